#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

struct sqlite3;

namespace quillery::archive {

// The tokenizer of the search index: it cuts a text into its letter triples, so that the index
// can name every message that may contain a piece of text of three or more characters.
//
// A text is read as SQLite's LIKE reads it: UTF-8 decoded into code points the way SQLite does
// (malformed sequences included), ASCII letters folded to lower case and nothing else folded,
// because LIKE ignores case for ASCII letters only. Only triples of three word characters are
// kept (ASCII letters and digits and every code point beyond ASCII); each triple becomes one
// five-byte token made from a hash of its code points, and a document gives each token once.
// A message whose column matches `LIKE '%piece%'` therefore carries the token of every word
// triple of the piece; the converse does not hold (the triples may lie apart, or two triples
// may share a hash), so the index only ever narrows a search down to a superset of its hits.
class TrigramTokenizer {
 public:
  // The name under which FTS5 tables of the index refer to the tokenizer.
  static constexpr char kName[] = "quillery_trigram";

  // Registers the tokenizer with FTS5 on this connection; false when FTS5 is not available.
  static bool registerWith(sqlite3* connection);

  // The word triples of the literal runs of a LIKE pattern (the stretches between its "%" and
  // "_" wildcards), folded as the index folds them, each once, as UTF-8 texts of three code
  // points, in the order they first occur. Every message that the pattern matches (with
  // SQLite's LIKE, no ESCAPE clause) holds all of them in the column the pattern is matched
  // against. An empty list means the pattern has no word triple: the index cannot narrow it.
  static QList<QByteArray> likeTriples(const QString& pattern);
};

}  // namespace quillery::archive
