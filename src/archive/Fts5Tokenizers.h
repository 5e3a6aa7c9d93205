#pragma once

#include <sqlite3.h>

#include <QByteArray>
#include <QByteArrayView>

namespace quillery::archive {

// Registers a tokenizer with FTS5 on the connection under `name`, handing `context` to its
// xCreate; false when FTS5 is not available or refuses it.
bool registerFts5Tokenizer(sqlite3* connection, const char* name, void* context,
                           fts5_tokenizer* tokenizer);
// The tokens that the tokenizer gives for a document of this text, each followed by a line
// break, in the order given: what it makes of a text, to be compared with another version.
QByteArray documentTokens(const fts5_tokenizer& tokenizer, void* context, QByteArrayView text);

}  // namespace quillery::archive
