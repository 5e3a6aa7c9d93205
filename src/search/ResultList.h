#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <vector>

#include "archive/Archive.h"
#include "search/Emailrow.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform

namespace quillery::search {

// The result list: the messages found by the last search, SQL query or store run, one
// Emailrow each. It runs the SELECT that the caller has put into the archive's sqlText
// (retrieve), keeps the rows in ascending order of the column clicked last and shows them
// reversed while sortDescending is set. The ids of the listed messages go into the archive's
// shared idList in the order the rows arrived; sorting and removing rows from the list leave
// that list alone. The window follows the list through the signals; a test reads the fields.
class IndexedSearch;

class ResultList : public QObject {
  Q_OBJECT

 public:
  // The seven column identifiers, in the order the table shows them by default. They are
  // also the names of the Emailrow accessors, and the sort builds its comparison from them.
  static const QStringList kColumnIdentifiers;

  ResultList(archive::Archive& archive, platform::Dialogs& dialogs, platform::Progress& progress,
             QObject* parent = nullptr);

  // Runs the statement in the archive's sqlText on the open connection inside one
  // transaction and replaces the list with its rows (id, date, from, to, subject, mailbox,
  // numAttach), leaving out rows without attachments when onlyAttachCheck is on (it sets
  // onlyAttachments from it, whatever the caller left there). A failing
  // statement shows "SQL Error: %s", closes the list window and the connection and leaves the
  // list empty. dbPath is only named in the list window's title. With `indexed`, the
  // statement runs through the search index when that lists the same rows faster; should the
  // index fail, the statement runs as it stands.
  void retrieve(const QString& dbPath, IndexedSearch* indexed = nullptr);
  // The row callback of retrieve(); context: ResultList*.
  static int listRowCallback(void* context, int columns, char** values, char** names);

  // Empties the list, the archive's idList and the two count texts, as a store run does
  // before it starts.
  void clear();
  // Empties the list and idList after its messages were deleted from the archive, and shows
  // the counts again ("0 emails in this list.").
  void removeAll();

  // The actions on listed messages use the connection that the retrieval left open. When
  // something closed it since (reading the categories does), this opens the archive that the
  // list was read from again; false when there is none or it does not open (openDB's alert
  // has been shown and openFailed is cleared again).
  bool reopenListedArchive();
  // The archive file of the last retrieval.
  const QString& listedArchivePath() const { return listedArchivePath_; }

  // Puts a new row in place of the row at this array index (the tag marker changed); the
  // table is told by rowsReplaced, once for a batch.
  void replaceRow(int arrayIndex, Emailrow row);

  // For a feature that makes the list itself one row at a time (the merge lists the messages
  // it copied from another file into the archive at dbPath, which becomes the listed
  // archive). startRows empties the list, the archive's idList and both count texts and holds
  // the table reset until finishRows. appendRow adds a row and its id text to idList,
  // as a retrieved row would be added. finishRows applies the list font again, reloads the
  // table and shows both counts as a retrieval does (a failing count goes to standard error).
  void startRows(const QString& dbPath);
  void appendRow(Emailrow row);
  void finishRows();

  // The array index that a table row shows: reversed while sortDescending is set.
  int arrayIndex(int displayRow) const;
  const Emailrow& rowAt(int displayRow) const { return emailRows.at(arrayIndex(displayRow)); }

  // A click on the column with this identifier: the same column again flips the direction
  // without sorting; another column sorts ascending by its comparison and keeps the
  // direction. Unknown identifiers are ignored.
  void clickColumn(const QString& identifier);

  // Removes the rows shown at these display rows from the list only; the archive file and
  // idList are not touched. Then the counts are shown again.
  void deleteFromList(const QList<int>& selectedDisplayRows);

  // "N emails in the database." from the open archive, and "N emails in this list.".
  const QString& dbCountText() const { return dbCountText_; }
  const QString& listCountText() const { return listCountText_; }

  QList<Emailrow> emailRows;
  int listCount = 0;
  bool sortDescending = false;
  QString sortColumn;  // identifier of the column clicked last; empty before the first click
  int onlyAttachments = 0;
  // The state of the search panel's "only email with attachments" box; the window keeps it
  // current, and every retrieval takes it into onlyAttachments.
  bool onlyAttachCheck = false;

 Q_SIGNALS:
  // The rows are about to change as a whole; listReset follows. A model resets between the
  // two, so that no view reads the rows while they change.
  void listAboutToReset();
  // The rows changed as a whole (retrieval, sorting, removal, clear): reload the table.
  void listReset();
  void countsChanged(const QString& dbCountText, const QString& listCountText);
  void listWindowTitleChanged(const QString& title);
  void listWindowShown();
  void listWindowClosed();
  void sqlPanelClosed();
  void messageViewCleared();
  // The header shows the indicator on this column, descending or ascending.
  void sortIndicatorChanged(const QString& identifier, bool descending);
  // After a removal the list's font and row height are applied again.
  void fontReapplied();
  // Rows were replaced in place; their number and order are unchanged, so a selection stays.
  void rowsReplaced();

 private:
  // Runs the statement with the row callback, through the index when given.
  archive::ExecResult runListStatement(IndexedSearch* indexed);
  // Reads the ids of the tagged messages for a statement that runs alone; when the statement
  // holds more than one, or the read fails, each row asks for its own tags row as it comes.
  void readTaggedIds(const QString& statement);
  // Whether the message with this id has a tags row; false with its error reported when that
  // cannot be read.
  bool tagged(int id, bool& failed);
  void showCounts();
  // Forgets the rows, their ids and both count texts; the callers tell the views.
  void emptyRows();

  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  QString dbCountText_;
  QString listCountText_;
  QString listedArchivePath_;
  // The tagged ids of the retrieval under way, ascending, when they were read at its start.
  std::vector<long long> taggedIds_;
  bool taggedIdsRead_ = false;
};

}  // namespace quillery::search
