#pragma once

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

#include "ingest/CurrentMessage.h"
#include "ingest/StoreLog.h"
#include "ingest/StorePaths.h"
#include "ingest/StoreRunCounters.h"

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

namespace quillery::ingest {

class EmailStore;
class RecordReader;

// The preference switches that shape a store run, each 0 or 1 in the tool's arguments.
struct StoreSwitches {
  bool allmbState = false;
  bool attachState = false;
  bool htmlState = false;
  bool trashState = false;
  bool origState = false;
  bool mailboxesState = false;
};

// One side of the store-date panel: the selected titles of its month, day and year pop-ups,
// "All" or the two-digit month and day and the four-digit year.
struct StoreDate {
  QString month = QStringLiteral("All");
  QString day = QStringLiteral("All");
  QString year = QStringLiteral("All");
};

struct StoreDateRange {
  StoreDate begin;
  StoreDate end;
};

// The chosen accounts and mailboxes of the preferences; the mbox files of an mbox run are
// the run's own sourceList.
struct StoreSources {
  QStringList accountList;
  QStringList mailboxList;
};

// A store run: checks the choices, opens the archive and one transaction, runs the parser
// tool through "/usr/bin/nice" and stores each message it announces, then commits, writes
// the summary to the store log, shows it and lists the stored messages. Everything runs on
// the calling thread's event loop, driven by the tool's output and its termination; no call
// blocks while the tool works. The window binds its panels to the signals; the run itself
// shows only alerts (through Dialogs) and progress (through Progress).
class StoreRun : public QObject {
  Q_OBJECT

 public:
  // domailPath is the parser tool's executable (the application's own folder + "/domail").
  StoreRun(archive::Archive& archive, search::ResultList& resultList, CurrentMessage& message,
           StoreRunCounters& counters, platform::Dialogs& dialogs, platform::Progress& progress,
           QString domailPath, QObject* parent = nullptr);
  ~StoreRun() override;

  // Prepares the store-date panel for a run over the mail client's folders: when the archive
  // at dbPath holds messages, returns (and signals) the newest stored day as the begin date.
  // An archive that fails to open returns nothing and leaves the panel closed; a failing
  // query is reported on standard error and leaves the begin date as it is. While a run is
  // under way nothing happens: reopening the archive would roll back what it stored.
  std::optional<StoreDate> setStoreDate(const QString& dbPath);
  // Asks for mbox files; on a choice they become sourceList, the run switches to mbox mode
  // and the date panel is shown. Returns false when the user cancelled or a run is under
  // way (nothing changes).
  bool openMbox();
  // Closes the date panel; mbox mode stays until a run ends.
  void cancelStore();
  // The panel's Store action. Returns true when the tool was launched; false when a run is
  // under way, a check failed (alert shown), the user cancelled the confirmation or the
  // archive could not be opened (openDB's alert shown). The run then ends with finished().
  bool parseEmail(const QString& dbPath, const StoreSwitches& switches, const StoreDateRange& dates,
                  const StoreSources& sources);
  // Asks a running store to stop: the tool is ended at its next output and what was stored
  // is committed as at any end.
  void cancelParse();
  // For quitting: ends a running tool at once and commits what was stored, without the rest
  // of the run's end (no summary, no listing). Does nothing when no tool runs.
  void terminateParser();
  // Ends a running tool without waiting for its next output (a console's Ctrl-C); the run
  // then ends as every run does, committing what was stored.
  void stopParserNow();
  bool isRunning() const;
  // The files of the run started last (all empty before the first); the archive path may
  // have changed since.
  const StorePaths& lastRunPaths() const { return paths_; }

  // The tool's arguments after its own path, as parseEmail passes them; the run log path is
  // the one of the run begun last.
  QStringList toolArguments(const StoreSwitches& switches, const StoreDateRange& dates,
                            const StoreSources& sources) const;
  // "%@-%@-%@ 00:00:00" from the pop-up titles, "All" read as 0000-00-00 or 9999-99-99.
  static QString beginDateText(const StoreDate& date);
  static QString endDateText(const StoreDate& date);

  bool mboxMode = false;
  QStringList sourceList;
  QString lastProgressText;
  QString progressTitle;
  const QString domailPath;

 Q_SIGNALS:
  void storeDatePanelShown();
  void storeDatePanelClosed();
  void beginStoreDateSelected(const QString& year, const QString& month, const QString& day);
  void storePanelClosed();
  void messageViewCleared();
  void storePanelTitleChanged(const QString& title);
  // The run has ended (tool finished, failed to start or was cancelled) with this summary.
  void finished(const QString& summary);

 private:
  bool checkSources(const StoreSwitches& switches, const StoreSources& sources);
  bool confirm(const QString& dbPath, const StoreSwitches& switches);
  void beginRun(const QString& dbPath, const StoreSwitches& switches);
  void launch(const QStringList& arguments);
  void taskDataAvailable();
  void taskCompleted();
  void resumeAfterStoring();
  // Takes the tool's process out of the run (no more signals) and deletes it later.
  QProcess* detachTask();
  // Ends the run's transaction, keeping what was stored, and frees the connection.
  void commitStored();
  void sendData(const QString& text);
  void listStoredMessages();
  void logSqlError(const QString& statement);

  archive::Archive& archive_;
  search::ResultList& resultList_;
  CurrentMessage& message_;
  StoreRunCounters& counters_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  StoreLog storeLog_;
  StorePaths paths_;
  std::unique_ptr<EmailStore> store_;
  std::unique_ptr<RecordReader> reader_;
  QPointer<QProcess> parserTask_;
  // Set while a message is stored; tool events meanwhile are replayed afterwards.
  bool storing_ = false;
  bool dataPending_ = false;
  bool completionPending_ = false;
};

}  // namespace quillery::ingest
