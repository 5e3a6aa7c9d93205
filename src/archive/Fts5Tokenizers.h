#pragma once

#include <sqlite3.h>

namespace quillery::archive {

// Registers a tokenizer with FTS5 on the connection under `name`, handing `context` to its
// xCreate; false when FTS5 is not available or refuses it.
bool registerFts5Tokenizer(sqlite3* connection, const char* name, void* context,
                           fts5_tokenizer* tokenizer);

}  // namespace quillery::archive
