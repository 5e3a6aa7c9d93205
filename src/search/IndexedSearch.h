#pragma once

#include <QString>

namespace quillery::archive {
class Archive;
}

namespace quillery::search {

// Runs the search builder's statements through the search index: the statement the user sees
// stays as it is, and what runs is the same statement with the messages narrowed to the
// index's candidates, which lists the same rows in the same order.
//
// The narrowed statement keeps the whole condition and adds "email.id IN (candidates)"; since
// the candidates are a superset of the rows the condition lets through, the rows are the
// same. The order is the statement's ORDER BY UPPER(date_fld), and among equal dates the
// order in which SQLite reads the messages for the plain statement (SQLite sorts stably): by
// id when it walks the email table (or the tags table, whose ids are the messages'), by date
// text and then id when it walks the date index. The narrowed statement sorts by that order
// explicitly. When the plan of the plain statement is not one of these, or the index is not
// usable, or the statement is not of the builder's shape or cannot be narrowed, the statement
// runs as it stands.
class IndexedSearch {
 public:
  explicit IndexedSearch(archive::Archive& archive);

  // The statement to run for `statement` on the open archive, inside the transaction in
  // which it then runs: the narrowed one, or `statement` itself.
  QString statementFor(const QString& statement);

 private:
  // The columns that break ties of the plain statement's order, or empty when its plan is
  // not one whose reading order is known.
  QString tieOrder(const QString& statement);
  QStringList columnNames();

  archive::Archive& archive_;
};

}  // namespace quillery::search
