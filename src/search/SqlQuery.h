#pragma once

#include <QString>
#include <optional>

#include "search/SearchForm.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
}

namespace quillery::search {

class EmailSearch;
class ResultList;
class SearchQueryBuilder;

// The SQL query panel: it shows the statement the search panel would run and runs it with a
// WHERE part the user typed instead. Nothing here checks the user's SQL: it is joined to the
// statement head as it stands, and a statement that fails is reported by the list.
class SqlQuery {
 public:
  // The two texts the panel shows.
  struct PanelText {
    QString beginSql;  // the view statement (or ""), two line breaks, the SELECT part
    QString where;     // the WHERE part with its ORDER BY, editable
  };

  // The text of the schema description shown by showSchema.
  static const char* const kSchemaText;

  SqlQuery(archive::Archive& archive, SearchQueryBuilder& builder, EmailSearch& search,
           ResultList& list, platform::Dialogs& dialogs);

  // Builds the search statement from the form (reopening the archive at dbPath) and answers
  // the panel's texts; the archive's sqlText holds the shown head. Answers nothing when the
  // search actions are busy or the archive did not open (its alert has been shown and
  // openFailed is cleared again).
  std::optional<PanelText> editSqlString(const SearchForm& form, const QString& dbPath);
  // Runs the last SELECT part followed directly by the typed WHERE part (which replaces the
  // builder's) and lists the result; a failing statement shows "SQL Error: %s" and empties
  // the list. The connection of the last search is used; when a failed statement has closed
  // it, the archive is opened again and the attachment view, if the search had one, made
  // again, so that the user can correct the text and run it once more. Returns false when
  // nothing was run.
  bool makeSQLString(const QString& whereText, const QString& dbPath);
  // Shows the schema description in an alert titled "Database Schema".
  void showSchema();

 private:
  bool reopenForStatement(const QString& dbPath);

  archive::Archive& archive_;
  SearchQueryBuilder& builder_;
  EmailSearch& search_;
  ResultList& list_;
  platform::Dialogs& dialogs_;
};

}  // namespace quillery::search
