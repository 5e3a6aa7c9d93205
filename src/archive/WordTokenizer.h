#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace quillery::archive {

// The tokenizer of the search index's message tables: a document gives each of its distinct
// words once, read as LIKE reads texts (like_text): folded, and written as UTF-8 (what was
// malformed as U+FFFD). Words of fewer than three characters are left out, as no pattern that
// the index narrows can lie inside one. A word longer than kLongest characters is given as
// pieces of kLongest characters that start every kStep characters, the last one ending with
// the word, so that a long text without spaces (a link, an encoded part) costs little: every
// piece of text of up to kReach characters of the word lies whole in one of its pieces. A query
// term is taken as it stands, as one token: the index's queries name words of its vocabulary.
//
// A message whose column matches `LIKE '%piece%'` holds, for every run of word characters in
// the pattern's literal text (between wildcards and other characters), a word that the run
// lies inside, or, for a run of more than kReach characters, that word or a piece of kLongest
// characters holding the run's first kReach characters (mayHold).
class WordTokenizer {
 public:
  static constexpr char kName[] = "quillery_words";
  static constexpr int kLongest = 32;
  static constexpr int kStep = 16;
  static constexpr int kReach = kLongest - kStep + 1;

  // The words that documents have given since forget(), so that only the first sighting of a
  // word costs a look into the vocabulary, and the new ones among them (fresh) for the caller
  // to add to it. It also tells each document's repeated words apart.
  class Seen {
   public:
    // Whether the document (by its number) gives the word now, the first time.
    bool take(std::string_view word, std::uint32_t document);
    std::uint32_t nextDocument();
    void forget();
    std::vector<std::string> fresh;

   private:
    // Open addressing over the words kept one after another in text_: one look into memory
    // a word, where a hash table of strings would cost several.
    struct Slot {
      std::uint32_t hash = 0;
      std::uint32_t document = 0;  // 0: free
      std::uint32_t at = 0;
      std::uint32_t size = 0;
    };
    void grow();
    void clearWords();

    std::vector<Slot> slots_;
    std::string text_;
    std::size_t used_ = 0;
    std::uint32_t documents_ = 0;
  };

  // Registers the tokenizer with FTS5 on this connection, noting words in `seen` (which must
  // outlive the connection); false when FTS5 is not available.
  static bool registerWith(sqlite3* connection, Seen* seen);
  // The words that a document of this text gives, each followed by a line break.
  static QByteArray documentWords(QByteArrayView text);

  // The runs of word characters of three or more characters in the literal text of a LIKE
  // pattern (SQLite's LIKE, no ESCAPE clause; "%" and "_" end a run), folded and as UTF-8, each
  // once, the longest first. Empty when there is none: the index cannot narrow the pattern.
  static QList<QByteArray> likeRuns(const QString& pattern);
  // What the vocabulary is searched for to find the words that may hold a run: the run, or
  // its first kReach characters when it is longer.
  static QByteArray lookupKey(const QByteArray& run);
  // Whether a message with this word (or piece of a word) may hold the run.
  static bool mayHold(QByteArrayView word, const QByteArray& run);
};

}  // namespace quillery::archive
