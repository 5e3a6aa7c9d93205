#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <memory>
#include <optional>

#include "archive/WordTokenizer.h"

struct sqlite3;

namespace quillery::archive {

class PreparedStatement;

// The search index's vocabulary: every word (and piece of a long word) that its message
// tables have ever been given (WordTokenizer), in the table "words", with the grams of each
// word (GramTokenizer) in the FTS5 table "quillery_word_grams" under the word's id, so that
// the words that hold a piece of text are found without reading them all. Words stay when the
// messages that gave them are deleted: that costs a needless word in a query, never a hit.
class Vocabulary {
 public:
  // A run of a pattern that more words than this may hold narrows nothing: the query would
  // cost more than it saves.
  static constexpr int kMostWords = 256;

  // The statements that make the vocabulary's tables in a new side file.
  static QStringList schema();

  explicit Vocabulary(sqlite3* connection);
  ~Vocabulary();
  Vocabulary(const Vocabulary&) = delete;
  Vocabulary& operator=(const Vocabulary&) = delete;

  // Whether its statements compiled.
  bool ok() const;
  // Adds the fresh words of `seen` that it does not hold yet, in the open transaction, and
  // empties that list. False when writing fails.
  bool addFresh(WordTokenizer::Seen& seen);
  // Forgets every word.
  bool empty();
  // The words that a message holding the run (WordTokenizer::likeRuns) may have given
  // (WordTokenizer::mayHold); nothing when more than kMostWords may, or when reading fails,
  // for the run then narrows nothing.
  std::optional<QList<QByteArray>> holding(const QByteArray& run);

 private:
  bool add(const std::string& word);

  sqlite3* connection_;
  std::unique_ptr<PreparedStatement> find_;
  std::unique_ptr<PreparedStatement> insert_;
  std::unique_ptr<PreparedStatement> insertGrams_;
};

}  // namespace quillery::archive
