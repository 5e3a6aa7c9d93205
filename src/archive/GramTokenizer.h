#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

struct sqlite3;

namespace quillery::archive {

// The tokenizer of the search index: it cuts a text into short grams of its words, so that the
// index can name every message that may contain a piece of text of three or more characters.
//
// A text is read as SQLite's LIKE reads it: UTF-8 decoded into code points the way SQLite does
// (malformed sequences included), ASCII letters folded to lower case and nothing else folded,
// because LIKE ignores case for ASCII letters only. A word is a run of word characters (ASCII
// letters and digits and every code point beyond ASCII). Every three consecutive characters
// of a word give a triple token (a hash of the three, five bytes), and every four a quad token
// (a hash of the four folded into 2^14 values, six bytes): the quads tell which triples
// stand side by side, which the index keeps no positions for, while their small number of
// values keeps the index small and quick to write. A document gives each token once.
//
// A message whose column matches `LIKE '%piece%'` holds, for every run of word characters in
// the pattern's literal text (between wildcards and other characters), the token of each of
// its quads, or of the run itself when it is three characters long: the index names a superset
// of the matching messages (two grams that share a token only cost a needless candidate).
class GramTokenizer {
 public:
  // The name under which FTS5 tables of the index refer to the tokenizer.
  static constexpr char kName[] = "quillery_grams";

  // Registers the tokenizer with FTS5 on this connection; false when FTS5 is not available.
  static bool registerWith(sqlite3* connection);

  // The grams that every message the LIKE pattern matches (SQLite's LIKE, no ESCAPE clause)
  // holds in the column, as UTF-8 texts of three or four code points for an FTS5 query (which
  // this tokenizer turns into their tokens), each once, in the order they first occur. Empty
  // when the pattern has no run of three word characters: the index cannot narrow it.
  static QList<QByteArray> likeGrams(const QString& pattern);
};

}  // namespace quillery::archive
