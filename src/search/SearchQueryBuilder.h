#pragma once

#include <QString>

#include "search/SearchForm.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform

namespace quillery::search {

// Turns the search panel into one SELECT statement, kept in its two parts (searchSelectSQL
// and searchWhereSQL, which also carries the ORDER BY) and, for a search on part of an
// attachment's name, the CREATE TEMP VIEW statement run before it (searchViewSQL). The three
// texts keep their last values until the next successful build; the SQL panel reads them and
// may replace the WHERE part. The statement is searchSelectSQL followed directly by
// searchWhereSQL.
class SearchQueryBuilder {
 public:
  SearchQueryBuilder(archive::Archive& archive, platform::Dialogs& dialogs,
                     platform::Progress& progress);

  // Reopens the archive at dbPath (openDB) and builds the statement from the form, leaving
  // the connection open for the caller. When the archive does not open, openDB has shown its
  // alert and left openFailed raised; nothing is built. For an attachment-name search the
  // view is made on the fresh connection; if that fails, "SQL error: %s" is shown, the
  // progress panel closed and the two statement parts are left as they were, so that the
  // caller runs the previous search again. Cell texts go into the statement as they stand:
  // quotes are doubled in the subject, body and notes only, and a per-cent sign is a LIKE
  // wildcard like the ones the builder puts around each text.
  void makeSearchSQL(const SearchForm& form, const QString& dbPath);

  // The statement of the last build, as the list runs it.
  QString statement() const { return searchSelectSQL + searchWhereSQL; }

  QString searchSelectSQL;
  QString searchWhereSQL;
  QString searchViewSQL;

 private:
  // Makes the view of the messages whose attachment names match the pattern; false after
  // its failure has been reported.
  bool makeAttachmentView(const QString& pattern, const QString& dbPath);

  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
};

}  // namespace quillery::search
