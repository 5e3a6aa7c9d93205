#pragma once

#include <QObject>
#include <QString>

#include "archive/maintenance/ErrorLines.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform
namespace quillery::search {
class ResultList;
}

namespace quillery::maintenance {

// Brings an archive file of the old format (an email table without numAttach) up to date in
// place: the email table is rebuilt in the current layout, every row keeping its id, and then
// every message's numAttach is counted from its attachment rows, leaving out those whose file
// name ends in html or etf in any letter case.
class FormatConversion : public QObject {
  Q_OBJECT

 public:
  // attachmentCountErrors takes the line written when a message's count cannot be stored
  // (the store run's log, which also counts the error, when the caller has one open); by
  // default it goes to standard error.
  FormatConversion(archive::Archive& archive, search::ResultList& list, platform::Dialogs& dialogs,
                   platform::Progress& progress,
                   LineSink attachmentCountErrors = writeToStandardError,
                   QObject* parent = nullptr);

  // The conversion action on the archive at dbPath, on the shared connection. A file that
  // cannot be opened ("SQL Error: %@ %s") or is already current (its alert; the connection
  // is closed) is left alone, as is every file when the user cancels the question (the
  // connection then stays open). Otherwise the visible list is emptied and the conversion runs
  // in two transactions. The first rebuilds the table; if any of its statements fails it is
  // rolled back, so the old table and its rows stay as they were, the connection is closed,
  // openFailed raised and "SQL Error: %@ %s" shown. The second stores the counts; a count
  // that cannot be read ends the action at once with "SQL error: %s", its transaction left
  // open, and a count that cannot be stored writes a line to attachmentCountErrors and goes
  // on. Ends with the "has been converted" alert and the connection open. Returns true then.
  // While a store run is under way nothing happens.
  bool convertDBFormat(const QString& dbPath);

  // The temporary table that holds the rows while the email table is rebuilt.
  static const char* const kCreateEmailBak;

 Q_SIGNALS:
  // The list window is to close and the message view to be emptied: they showed whatever
  // archive was open before.
  void storePanelClosed();
  void messageViewCleared();

 private:
  bool confirm(const QString& dbPath);
  void clearVisibleState();
  bool rebuildEmailTable(const QString& dbPath);
  bool countAttachments();

  archive::Archive& archive_;
  search::ResultList& list_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  LineSink attachmentCountErrors_;
};

}  // namespace quillery::maintenance
