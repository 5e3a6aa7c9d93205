#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace quillery::search {

// Reads a statement of the search query builder and works out which messages it can possibly
// list: the candidate query, a SELECT of message ids from the search index's tables (run on
// the index's own connection) whose rows are a superset of the statement's rows.
//
// Only the builder's shape is read: its SELECT part on "email" or "email,tags", then an
// optional WHERE with comparisons joined by AND, OR and brackets, and " ORDER BY
// UPPER(date_fld)". The text is read by SQLite's own rules (keywords and column names in any
// letter case, double-quoted strings with doubled quotes), so that a cell text that carries
// quotes of its own is understood as SQLite understands it. Anything else is refused.
//
// A `column LIKE "pattern"` on an indexed column narrows to the messages that hold, for each
// run of word characters of the pattern (WordTokenizer::likeRuns), one of the words of the
// index's vocabulary that may hold the run; a run with too many such words narrows nothing,
// and neither does every other comparison. AND narrows to the messages both sides allow, OR
// to those either side allows.
class SearchPrefilter {
 public:
  // The words of the vocabulary that may hold a run of a pattern (SearchIndex::wordsHolding),
  // or nothing when the run narrows nothing.
  using WordsHolding = std::function<std::optional<QList<QByteArray>>(const QByteArray& run)>;

  // The builder's SELECT part for a search without and with tags, up to the WHERE part.
  static const QString kSelectEmail;
  static const QString kSelectEmailTags;

  // Reads the statement. columnNames are the columns of the tables in the statement as the
  // archive has them: a double-quoted text with such a name would be that column, so a
  // statement with one is refused. likeLimit is SQLite's longest LIKE pattern in bytes: a
  // longer one fails row by row, which the index would hide, so it is refused. wordsHolding
  // is asked for the runs of the LIKE patterns on indexed columns. Answers nothing for a
  // statement of another shape.
  static std::optional<SearchPrefilter> read(const QString& statement,
                                             const QStringList& columnNames, int likeLimit,
                                             const WordsHolding& wordsHolding);

  bool withTags = false;
  // The WHERE condition as the statement has it (without "WHERE" and the ORDER BY); empty
  // when the statement has none.
  QString condition;
  // The candidate query, or empty when the statement cannot be narrowed.
  QString candidates;
};

}  // namespace quillery::search
