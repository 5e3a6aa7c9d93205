#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>

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
  // list empty. dbPath is only named in the list window's title.
  void retrieve(const QString& dbPath);
  // The row callback of retrieve(); context: ResultList*.
  static int listRowCallback(void* context, int columns, char** values, char** names);

  // Empties the list, the archive's idList and the two count texts, as a store run does
  // before it starts.
  void clear();

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

 private:
  // The bytes and text of a column on the row read last, for sharing repeated texts.
  struct RepeatedText {
    QByteArray bytes;
    QString text;
  };
  // The text of a column that often repeats from row to row (the mailbox, the recipient):
  // the previous row's text is shared when the bytes are the same, which keeps a long list
  // small.
  static QString repeatedText(const char* value, RepeatedText& last);
  void showCounts();
  // Forgets the rows, their ids and both count texts; the callers tell the views.
  void emptyRows();

  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  QString dbCountText_;
  QString listCountText_;
  RepeatedText lastTo_;
  RepeatedText lastMailbox_;
};

}  // namespace quillery::search
