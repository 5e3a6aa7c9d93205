#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>

struct sqlite3;

namespace quillery::archive {

// The tokenizer of the search index's vocabulary (Vocabulary): it cuts a text into the triples
// of its words, so that the index can name every word that may hold a piece of text of three
// or more characters.
//
// A text is read as SQLite's LIKE reads it (like_text). Every three consecutive characters of a
// word give a triple token (a hash of the three, five bytes); a document gives each token once.
//
// A text that matches `LIKE '%piece%'` holds the triple of every three consecutive characters
// of each run of word characters in the pattern's literal text (between wildcards and other
// characters): the index names a superset of the matching texts (two triples that share a
// token, or a text with the triples in another order, only cost a needless candidate).
class GramTokenizer {
 public:
  // The name under which FTS5 tables of the index refer to the tokenizer.
  static constexpr char kName[] = "quillery_grams";

  // Registers the tokenizer with FTS5 on this connection; false when FTS5 is not available.
  static bool registerWith(sqlite3* connection);
  // The triple tokens that a document of this text gives, each followed by a line break.
  static QByteArray documentTriples(QByteArrayView text);

  // The triples that every text the LIKE pattern matches (SQLite's LIKE, no ESCAPE clause)
  // holds, as UTF-8 texts of three code points for an FTS5 query (which this tokenizer turns
  // into their tokens), each once, in the order they first occur. Empty when the pattern has
  // no run of three word characters: the index cannot narrow it.
  static QList<QByteArray> likeGrams(const QString& pattern);
};

}  // namespace quillery::archive
