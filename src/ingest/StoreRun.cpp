#include "ingest/StoreRun.h"

#include <QFile>
#include <QProcessEnvironment>
#include <cstdio>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "archive/Statements.h"
#include "ingest/EmailStore.h"
#include "ingest/RecordReader.h"
#include "ingest/StoreSummary.h"
#include "ingest/ToolChunk.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"
#include "text/LeadingInt.h"

namespace quillery::ingest {

namespace {

const QString kAll = QStringLiteral("All");
const QString kNice = QStringLiteral("/usr/bin/nice");

QString zeroOne(bool on) {
  return on ? QStringLiteral("1") : QStringLiteral("0");
}

QString dateText(const StoreDate& date, const QString& allMonthDay, const QString& allYear) {
  const QString year = date.year == kAll ? allYear : date.year;
  const QString month = date.month == kAll ? allMonthDay : date.month;
  const QString day = date.day == kAll ? allMonthDay : date.day;
  return QStringLiteral("%1-%2-%3 00:00:00").arg(year, month, day);
}

}  // namespace

StoreRun::StoreRun(archive::Archive& archive, search::ResultList& resultList,
                   CurrentMessage& message, StoreRunCounters& counters, platform::Dialogs& dialogs,
                   platform::Progress& progress, QString domailPath, QObject* parent)
    : QObject(parent),
      domailPath(std::move(domailPath)),
      archive_(archive),
      resultList_(resultList),
      message_(message),
      counters_(counters),
      dialogs_(dialogs),
      progress_(progress),
      store_(
          std::make_unique<EmailStore>(archive, message, counters, storeLog_, dialogs, progress)),
      reader_(std::make_unique<RecordReader>(*store_, archive, message, counters, storeLog_,
                                             progress, resultList.listCount)) {}

StoreRun::~StoreRun() {
  terminateParser();
}

std::optional<StoreDate> StoreRun::setStoreDate(const QString& dbPath) {
  // Reopening the archive now would roll back the running store's transaction.
  if (isRunning())
    return std::nullopt;
  archive_.openDB(dbPath);
  if (archive_.openFailed) {
    archive_.openFailed = false;
    return std::nullopt;
  }
  std::optional<StoreDate> begin;
  if (archive_.isOpen()) {
    archive_.sqlResult.clear();
    const archive::ExecResult result = archive_.exec(
        QStringLiteral("SELECT MAX(date_fld) FROM email"), archive::singleValueCallback, &archive_);
    if (!result.ok()) {
      std::fprintf(stderr, "SQL error: %s\n", result.error.toUtf8().constData());
    } else if (text::leadingInt(archive_.sqlResult) != 0) {
      const QString newest = archive_.sqlResult;
      begin = StoreDate{newest.mid(5, 2), newest.mid(8, 2), newest.mid(0, 4)};
      Q_EMIT beginStoreDateSelected(begin->year, begin->month, begin->day);
    }
    archive_.close();
  }
  Q_EMIT storeDatePanelShown();
  return begin;
}

bool StoreRun::openMbox() {
  // The end of the running store would clear the mbox mode chosen now.
  if (isRunning())
    return false;
  platform::OpenPanel panel;
  panel.title = QStringLiteral("Import MBOX Files");
  panel.prompt = QStringLiteral("Open");
  panel.filesOnly = true;
  panel.multipleSelection = true;
  const QStringList chosen = dialogs_.runOpenPanel(panel);
  if (chosen.isEmpty())
    return false;
  sourceList = chosen;
  mboxMode = true;
  Q_EMIT storeDatePanelShown();
  return true;
}

void StoreRun::cancelStore() {
  Q_EMIT storeDatePanelClosed();
}

QString StoreRun::beginDateText(const StoreDate& date) {
  return dateText(date, QStringLiteral("00"), QStringLiteral("0000"));
}

QString StoreRun::endDateText(const StoreDate& date) {
  return dateText(date, QStringLiteral("99"), QStringLiteral("9999"));
}

bool StoreRun::parseEmail(const QString& dbPath, const StoreSwitches& switches,
                          const StoreDateRange& dates, const StoreSources& sources) {
  // A second run while the tool works would share its record files; the counter test alone
  // lets one through until the first message has been read.
  if (counters_.processedCount != 0 || isRunning())
    return false;
  counters_.parsedCount = 0;
  counters_.storedCount = 0;
  counters_.duplicateCount = 0;
  counters_.processedCount = 0;
  counters_.lowestStoredId = 999999;
  counters_.highestStoredId = 0;
  Q_EMIT storeDatePanelClosed();

  if (!mboxMode && !checkSources(switches, sources))
    return false;
  if (!confirm(dbPath, switches))
    return false;

  Q_EMIT storePanelClosed();
  archive_.close();
  resultList_.clear();
  Q_EMIT messageViewCleared();
  archive_.openDB(dbPath);
  if (archive_.openFailed) {
    archive_.openFailed = false;
    return false;
  }
  beginRun(dbPath, switches);
  QStringList arguments{domailPath};
  arguments += toolArguments(switches, dates, sources);
  launch(arguments);
  return true;
}

bool StoreRun::checkSources(const StoreSwitches& switches, const StoreSources& sources) {
  if (switches.mailboxesState && sources.mailboxList.isEmpty()) {
    dialogs_.critical(QString(),
                      QStringLiteral("You have not selected any mailboxes to store in the "
                                     "database.  Click on the Setup button to select your "
                                     "mailboxes."));
    return false;
  }
  if (!switches.mailboxesState && sources.accountList.isEmpty()) {
    dialogs_.critical(QString(),
                      QStringLiteral("You have not selected any email accounts to store in the "
                                     "database.  Click on the Setup button to select your email "
                                     "accounts."));
    return false;
  }
  return true;
}

bool StoreRun::confirm(const QString& dbPath, const StoreSwitches& switches) {
  QString text;
  if (mboxMode) {
    text = QStringLiteral(
               "Quillery will store and index the email in the selected mbox files, into the "
               "database file at ") +
           dbPath + QLatin1Char('.');
  } else {
    const QString what = switches.attachState ? QStringLiteral("and attachments ") : QString();
    text = QStringLiteral("Quillery will store and index the text ") + what +
           QStringLiteral(
               "of all emails in the In boxes and Sent boxes of your selected email "
               "accounts, ");
    if (switches.allmbState)
      text += QStringLiteral("plus all emails in all of your other mailboxes, ");
    text += QStringLiteral("into the database file at ") + dbPath + QLatin1Char('.');
  }
  if (switches.trashState)
    text += QStringLiteral(" The Trash & Junk mailboxes will also be stored.");
  const platform::Alert alert{platform::AlertStyle::Informational,
                              QStringLiteral("Store Email in Database"),
                              text,
                              {QStringLiteral("OK"), QStringLiteral("Cancel")}};
  return dialogs_.showAlert(alert) == 0;
}

void StoreRun::beginRun(const QString& dbPath, const StoreSwitches& switches) {
  paths_ = StorePaths::forArchive(dbPath);
  storeLog_.open(paths_.storeLog);
  counters_.sqlErrorCount = 0;
  progress_.showCount(QStringLiteral("0"));
  progress_.showItem(QString());
  progress_.setRunControlsVisible(true, platform::Progress::RunControls::All);
  progressTitle = QStringLiteral("Looking for email files...");
  progress_.open(progressTitle);
  logSqlError(QStringLiteral("BEGIN TRANSACTION"));
  archive_.storeRunUnderWay = true;
  store_->setPaths(paths_);
  store_->setOrigState(switches.origState);
}

QStringList StoreRun::toolArguments(const StoreSwitches& switches, const StoreDateRange& dates,
                                    const StoreSources& sources) const {
  QStringList arguments{paths_.runLog,
                        zeroOne(switches.allmbState),
                        zeroOne(switches.attachState),
                        zeroOne(switches.htmlState),
                        zeroOne(switches.trashState),
                        zeroOne(mboxMode),
                        zeroOne(switches.origState),
                        zeroOne(switches.mailboxesState && !mboxMode),
                        beginDateText(dates.begin),
                        endDateText(dates.end)};
  if (mboxMode) {
    arguments += sourceList;
  } else if (switches.mailboxesState) {
    arguments += sources.mailboxList;
  } else {
    arguments += sources.accountList;
    arguments.append(QStringLiteral("Mailboxes"));
  }
  return arguments;
}

void StoreRun::launch(const QStringList& arguments) {
  archive_.openFailed = false;
  auto* task = new QProcess(this);
  parserTask_ = task;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("NSUnbufferedIO"), QStringLiteral("YES"));
  task->setProcessEnvironment(environment);
  task->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  connect(task, &QProcess::readyReadStandardOutput, this, &StoreRun::taskDataAvailable);
  connect(task, &QProcess::finished, this, &StoreRun::taskCompleted);
  // Without a started process no finished signal follows; the run ends the same way, queued
  // because start() may report the failure before parseEmail has returned.
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
  archive_.openFailed = true;
}

QProcess* StoreRun::detachTask() {
  QProcess* task = parserTask_;
  parserTask_ = nullptr;
  task->disconnect(this);
  task->deleteLater();
  return task;
}

void StoreRun::commitStored() {
  logSqlError(QStringLiteral("COMMIT TRANSACTION"));
  archive_.storeRunUnderWay = false;
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
  if (archive_.openFailed) {
    disconnect(parserTask_, &QProcess::readyReadStandardOutput, this, &StoreRun::taskDataAvailable);
    parserTask_->terminate();
    return;
  }
  if (chunk.isEmpty())
    return;
  const ToolChunk said = ToolChunk::read(chunk);
  if (said.kind == ToolChunk::Kind::AttachmentStatus) {
    progressTitle = QStringLiteral("Processing attachment or HTML...");
    progress_.setTitle(progressTitle);
    return;
  }
  if (said.kind == ToolChunk::Kind::SearchingStatus) {
    progressTitle = QStringLiteral("Looking for email files...");
    progress_.setTitle(progressTitle);
    return;
  }
  const QString& text = said.announcement;
  // The answer goes out as soon as both record files have been read: the tool then writes
  // its next message while this one is stored, and neither waits for the other.
  bool answered = false;
  storing_ = true;
  reader_->doOneEmail(paths_.messageFile, [this, &answered] {
    sendData(QStringLiteral("go for it"));
    answered = true;
  });
  storing_ = false;
  if (text != lastProgressText) {
    progressTitle = QStringLiteral("Storing in database...");
    progress_.setTitle(progressTitle);
    progress_.showItem(text);
    lastProgressText = text;
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

void StoreRun::logSqlError(const QString& statement) {
  const archive::ExecResult result = archive_.exec(statement);
  if (!result.ok())
    storeLog_.write(QStringLiteral("SQL error: %1\n").arg(result.error));
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
  mboxMode = false;
  listStoredMessages();
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::All);

  QStringList invalidPaths;
  StoreSummary::readRunLog(paths_.runLog, counters_, invalidPaths);
  for (const QString& file : paths_.workFiles())
    QFile::remove(file);

  const QString summary = StoreSummary::compose(counters_, lastProgressText, invalidPaths);
  storeLog_.write(summary);
  storeLog_.close();
  counters_.sqlErrorCount = 0;
  counters_.parsedCount = 0;
  counters_.storedCount = 0;
  counters_.duplicateCount = 0;
  counters_.processedCount = 0;
  // The cancel request has been honoured; left raised it would fail the next openDB caller.
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
