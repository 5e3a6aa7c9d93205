#pragma once

#include <QObject>
#include <QPointer>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <memory>

#include "ingest/CurrentMessage.h"
#include "ingest/StoreLog.h"
#include "ingest/StorePaths.h"
#include "ingest/StoreRequest.h"
#include "ingest/StoreRunCounters.h"
#include "ingest/StoreTransaction.h"

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

// A store run carrying out a StoreRequest: it opens the archive and its transaction, runs
// the parser tool through "/usr/bin/nice" and stores each message the tool announces, then
// commits, writes the summary to the store log, shows it and lists the stored messages.
// Everything runs on the calling thread's event loop, driven by the tool's output and its
// termination; no call blocks while the tool works. The transaction is committed underneath
// at intervals (StoreTransaction), so a run killed hard loses only its last interval. The
// window binds its panels to the signals; the run itself shows only alerts (through
// Dialogs) and progress (through Progress).
class StoreRun : public QObject {
  Q_OBJECT

 public:
  // domailPath is the parser tool's executable (the application's own folder + "/domail").
  StoreRun(archive::Archive& archive, search::ResultList& resultList, CurrentMessage& message,
           StoreRunCounters& counters, platform::Dialogs& dialogs, platform::Progress& progress,
           QString domailPath, CommitInterval commitInterval = {}, QObject* parent = nullptr);
  ~StoreRun() override;

  // Starts the run of a request that its preparation has made (which reset the counters):
  // closes the store panel, empties the result list and the message view, opens the archive
  // and launches the tool. Returns false, with nothing started, while the tool of a run
  // still runs or when the archive cannot be opened (openDB's alert shown). Once started,
  // the run ends with finished(), also when the tool cannot be run.
  bool start(const StoreRequest& request);
  // Asks a running store to stop: the tool is ended at its next output and what was stored
  // is committed as at any end. Raises the archive's openFailed as well, as it always has.
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
  // The announcement shown last, named in the summary as the last file parsed. It is kept
  // from one run to the next.
  const QString& lastProgressText() const { return lastProgressText_; }

 Q_SIGNALS:
  void storePanelClosed();
  void messageViewCleared();
  void storePanelTitleChanged(const QString& title);
  // The tool has ended and what was stored is committed; the listing and the summary follow.
  // Mbox mode ends here.
  void toolEnded();
  // The run has ended (tool finished, failed to start or was cancelled) with this summary.
  void finished(const QString& summary);

 private:
  void beginRun(const StoreRequest& request);
  void launch(const QStringList& arguments);
  void taskDataAvailable();
  void storeAnnounced(const QString& announcement);
  void taskCompleted();
  void resumeAfterStoring();
  // Takes the tool's process out of the run (no more signals) and deletes it later.
  QProcess* detachTask();
  // Ends the run's transaction, keeping what was stored.
  void commitStored();
  void sendData(const QString& text);
  void countMessage();
  void listStoredMessages();
  // The user cancelled, or the archive proved damaged while a message was stored.
  bool stopRequested() const;

  archive::Archive& archive_;
  search::ResultList& resultList_;
  CurrentMessage& message_;
  StoreRunCounters& counters_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  const QString domailPath_;
  StoreLog storeLog_;
  StorePaths paths_;
  StoreTransaction transaction_;
  // Commits what a tool that pauses has left stored, between its messages.
  QTimer commitTimer_;
  std::unique_ptr<EmailStore> store_;
  std::unique_ptr<RecordReader> reader_;
  QPointer<QProcess> parserTask_;
  QString lastProgressText_;
  bool cancelRequested_ = false;
  // Set while a message is stored; tool events meanwhile are replayed afterwards.
  bool storing_ = false;
  bool dataPending_ = false;
  bool completionPending_ = false;
};

}  // namespace quillery::ingest
