#include "ingest/StoreRun.h"

#include <QFile>
#include <QProcessEnvironment>
#include <algorithm>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "ingest/EmailStore.h"
#include "ingest/RecordReader.h"
#include "ingest/StoreSummary.h"
#include "ingest/ToolChunk.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"

namespace quillery::ingest {

namespace {
const QString kNice = QStringLiteral("/usr/bin/nice");
}  // namespace

StoreRun::StoreRun(archive::Archive& archive, search::ResultList& resultList,
                   CurrentMessage& message, StoreRunCounters& counters, platform::Dialogs& dialogs,
                   platform::Progress& progress, QString domailPath, CommitInterval commitInterval,
                   QObject* parent)
    : QObject(parent),
      archive_(archive),
      resultList_(resultList),
      message_(message),
      counters_(counters),
      dialogs_(dialogs),
      progress_(progress),
      domailPath_(std::move(domailPath)),
      transaction_(archive, storeLog_, commitInterval),
      store_(
          std::make_unique<EmailStore>(archive, message, counters, storeLog_, dialogs, progress)),
      reader_(
          std::make_unique<RecordReader>(*store_, message, counters, [this] { countMessage(); })) {
  // A quarter of the interval's time: a pause of the tool is committed soon after it is due.
  commitTimer_.setInterval(int(std::max<qint64>(1, commitInterval.milliseconds / 4)));
  connect(&commitTimer_, &QTimer::timeout, this, [this] {
    // Between two messages only; an alert shown while one is stored runs the event loop.
    if (!storing_)
      transaction_.commitIfDue();
  });
}

StoreRun::~StoreRun() {
  terminateParser();
}

bool StoreRun::start(const StoreRequest& request) {
  if (isRunning())
    return false;
  Q_EMIT storePanelClosed();
  archive_.close();
  resultList_.clear();
  Q_EMIT messageViewCleared();
  if (!archive_.openForAction(request.dbPath))
    return false;
  beginRun(request);
  QStringList arguments{domailPath_};
  arguments += request.toolArguments();
  launch(arguments);
  return true;
}

void StoreRun::beginRun(const StoreRequest& request) {
  paths_ = StorePaths::forArchive(request.dbPath);
  storeLog_.open(paths_.storeLog);
  counters_.reset(StoreRunCounters::ResetPoint::StoreLogOpened);
  progress_.showCount(QStringLiteral("0"));
  progress_.showItem(QString());
  progress_.setRunControlsVisible(true, platform::Progress::RunControls::All);
  progress_.open(QStringLiteral("Looking for email files..."));
  transaction_.begin();
  commitTimer_.start();
  store_->beginRun(paths_);
  store_->setOrigState(request.switches.origState);
}

void StoreRun::launch(const QStringList& arguments) {
  archive_.openFailed = false;
  cancelRequested_ = false;
  auto* task = new QProcess(this);
  parserTask_ = task;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("NSUnbufferedIO"), QStringLiteral("YES"));
  task->setProcessEnvironment(environment);
  task->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  connect(task, &QProcess::readyReadStandardOutput, this, &StoreRun::taskDataAvailable);
  connect(task, &QProcess::finished, this, &StoreRun::taskCompleted);
  // Without a started process no finished signal follows; the run ends the same way, queued
  // because start() may report the failure before the caller has returned.
  connect(
      task, &QProcess::errorOccurred, this,
      [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
          taskCompleted();
      },
      Qt::QueuedConnection);
  task->start(kNice, arguments);
}

bool StoreRun::isRunning() const {
  return parserTask_ && parserTask_->state() != QProcess::NotRunning;
}

void StoreRun::cancelParse() {
  cancelRequested_ = true;
  archive_.openFailed = true;
}

bool StoreRun::stopRequested() const {
  return cancelRequested_ || store_->damagedArchiveFound();
}

QProcess* StoreRun::detachTask() {
  QProcess* task = parserTask_;
  parserTask_ = nullptr;
  task->disconnect(this);
  task->deleteLater();
  return task;
}

void StoreRun::commitStored() {
  commitTimer_.stop();
  transaction_.end();
}

void StoreRun::terminateParser() {
  if (!parserTask_)
    return;
  QProcess* task = detachTask();
  if (task->state() != QProcess::NotRunning) {
    task->terminate();
    // Quitting only: the tool ends at once on SIGTERM; a hung one is killed.
    if (!task->waitForFinished(3000)) {
      task->kill();
      task->waitForFinished(1000);
    }
  }
  // What was stored is kept, as when the user cancels.
  commitStored();
  storeLog_.close();
}

void StoreRun::stopParserNow() {
  if (isRunning())
    parserTask_->terminate();
}

void StoreRun::taskDataAvailable() {
  if (!parserTask_)
    return;
  // An alert shown while a message is stored runs an event loop: the tool, already
  // answered, may announce its next message or end meanwhile. Both wait until this store
  // is done, so messages are stored one after the other and the run never ends half way.
  if (storing_) {
    dataPending_ = true;
    return;
  }
  const QByteArray chunk = parserTask_->readAllStandardOutput();
  if (stopRequested()) {
    disconnect(parserTask_, &QProcess::readyReadStandardOutput, this, &StoreRun::taskDataAvailable);
    parserTask_->terminate();
    return;
  }
  if (chunk.isEmpty())
    return;
  const ToolChunk said = ToolChunk::read(chunk);
  if (said.kind == ToolChunk::Kind::AttachmentStatus)
    progress_.setTitle(QStringLiteral("Processing attachment or HTML..."));
  else if (said.kind == ToolChunk::Kind::SearchingStatus)
    progress_.setTitle(QStringLiteral("Looking for email files..."));
  else
    storeAnnounced(said.announcement);
}

void StoreRun::storeAnnounced(const QString& announcement) {
  // The answer goes out as soon as both record files have been read: the tool then writes
  // its next message while this one is stored, and neither waits for the other.
  bool answered = false;
  storing_ = true;
  reader_->doOneEmail(paths_.messageFile, [this, &answered] {
    sendData(QStringLiteral("go for it"));
    answered = true;
  });
  storing_ = false;
  transaction_.messageDone();
  if (announcement != lastProgressText_) {
    progress_.setTitle(QStringLiteral("Storing in database..."));
    progress_.showItem(announcement);
    lastProgressText_ = announcement;
  }
  if (!answered)
    sendData(QStringLiteral("go for it"));
  resumeAfterStoring();
}

void StoreRun::resumeAfterStoring() {
  if (dataPending_) {
    dataPending_ = false;
    QMetaObject::invokeMethod(this, &StoreRun::taskDataAvailable, Qt::QueuedConnection);
  }
  if (completionPending_) {
    completionPending_ = false;
    QMetaObject::invokeMethod(this, &StoreRun::taskCompleted, Qt::QueuedConnection);
  }
}

void StoreRun::sendData(const QString& text) {
  if (!parserTask_)
    return;
  parserTask_->write(text.toLatin1());
  // Handed to the pipe now rather than when the event loop next runs, which is only after
  // the message has been stored. Nine bytes fit an empty pipe at once, so this never waits.
  parserTask_->waitForBytesWritten(0);
}

void StoreRun::countMessage() {
  ++resultList_.listCount;
  progress_.doProgressCount(resultList_.listCount, 10);
}

void StoreRun::taskCompleted() {
  if (!parserTask_)
    return;
  if (storing_) {
    completionPending_ = true;
    return;
  }
  detachTask();
  commitStored();
  progress_.close();
  Q_EMIT toolEnded();
  listStoredMessages();
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::All);

  QStringList invalidPaths;
  StoreSummary::readRunLog(paths_.runLog, counters_, invalidPaths);
  for (const QString& file : paths_.workFiles())
    QFile::remove(file);

  const QString summary = StoreSummary::compose(counters_, lastProgressText_, invalidPaths);
  storeLog_.write(summary);
  storeLog_.close();
  counters_.reset(StoreRunCounters::ResetPoint::RunEnd);
  // The cancel request has been honoured; openFailed left raised would fail the next openDB
  // caller.
  cancelRequested_ = false;
  archive_.openFailed = false;

  Q_EMIT storePanelTitleChanged(QStringLiteral("done storing email in ") + paths_.dbPath);
  dialogs_.inform(QStringLiteral("Done Storing Email"), summary);
  Q_EMIT finished(summary);
}

void StoreRun::listStoredMessages() {
  archive_.sqlText = archive::listStatement(QStringLiteral(" WHERE id>=%1 AND id<=%2 ORDER BY id")
                                                .arg(counters_.lowestStoredId)
                                                .arg(counters_.highestStoredId));
  resultList_.onlyAttachments = 0;
  resultList_.retrieve(paths_.dbPath);
}

}  // namespace quillery::ingest
