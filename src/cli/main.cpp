// quillery-cli: the store run and the listing without the window, for scripts and scheduled
// jobs. It drives the same classes as the window with console ports.
#include <unistd.h>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSocketNotifier>
#include <csignal>
#include <cstdio>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "cli/CliOptions.h"
#include "cli/ConsoleDialogs.h"
#include "cli/ConsoleProgress.h"
#include "ingest/CurrentMessage.h"
#include "ingest/StorePreparation.h"
#include "ingest/StoreRun.h"
#include "ingest/StoreRunCounters.h"
#include "platform/qt/QtFiles.h"
#include "platform/qt/QtSettings.h"
#include "search/ResultList.h"

namespace quillery::cli {
namespace {

enum ExitCode { kOk = 0, kFailed = 1, kUsage = 2 };

void print(FILE* stream, const QString& text) {
  std::fputs(text.toUtf8().constData(), stream);
  std::fflush(stream);
}

// The archive the window would use: its saved path, else the first-run default.
QString archivePath(const CliOptions& options) {
  if (!options.archivePath.isEmpty())
    return QFileInfo(options.archivePath).absoluteFilePath();
  platform::QtSettings settings;
  const QString saved = settings.value(QStringLiteral("dbPath")).toString();
  if (!saved.isEmpty())
    return saved;
  return qEnvironmentVariable("HOME") + QStringLiteral("/Desktop/myemaildb");
}

// Ctrl-C and SIGTERM cancel the run the way the window's cancel button does, so what was
// stored is committed. The handler only writes to a pipe; the event loop does the rest.
int signalPipe[2] = {-1, -1};

void onSignal(int) {
  const char byte = 1;
  [[maybe_unused]] const ssize_t written = ::write(signalPipe[1], &byte, 1);
}

void cancelOnSignals(ingest::StoreRun& run, QObject* owner) {
  if (::pipe(signalPipe) != 0)
    return;
  auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, owner);
  QObject::connect(notifier, &QSocketNotifier::activated, owner, [&run] {
    char byte = 0;
    [[maybe_unused]] const ssize_t got = ::read(signalPipe[0], &byte, 1);
    print(stderr, QStringLiteral("\nCancelling: the messages stored so far are kept.\n"));
    run.cancelParse();
    // A tool that is still searching would only see the request at its next message.
    run.stopParserNow();
  });
  std::signal(SIGINT, onSignal);
  std::signal(SIGTERM, onSignal);
}

int runStore(QCoreApplication& app, const CliOptions& options) {
  // Without the parser tool the run would end at once with nothing stored and a zero summary.
  const QString domail = QCoreApplication::applicationDirPath() + QStringLiteral("/domail");
  if (!QFileInfo(domail).isExecutable()) {
    print(stderr, QStringLiteral("quillery-cli: the parser tool is missing: %1\n").arg(domail));
    return kFailed;
  }
  ConsoleDialogs dialogs;
  // The summary is printed on stdout below, and the confirmation is taken as given: a
  // scheduled job's standard error stays empty unless something went wrong.
  dialogs.silenceTitle(QStringLiteral("Done Storing Email"));
  dialogs.silenceTitle(QStringLiteral("Store Email in Database"));
  ConsoleProgress progress(options.progressLines ? ConsoleProgress::Mode::Lines
                                                 : ConsoleProgress::detectMode());
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  ingest::CurrentMessage message;
  ingest::StoreRunCounters counters;
  ingest::StoreRun run(archive, list, message, counters, dialogs, progress, domail);
  ingest::StorePreparation preparation(archive, dialogs, counters, run);

  ingest::StoreSources sources;
  QStringList mboxFiles;
  switch (options.sourceKind) {
    case CliOptions::SourceKind::Mbox:
      for (const QString& file : options.sources)
        mboxFiles.append(QFileInfo(file).absoluteFilePath());
      preparation.useMboxFiles(mboxFiles);
      break;
    case CliOptions::SourceKind::Accounts:
      sources.accountList = options.sources;
      break;
    case CliOptions::SourceKind::Mailboxes:
      sources.mailboxList = options.sources;
      break;
    case CliOptions::SourceKind::None:
      break;
  }

  QString summary;
  QObject::connect(&run, &ingest::StoreRun::finished, &app, [&](const QString& text) {
    summary = text;
    app.quit();
  });
  cancelOnSignals(run, &app);
  const std::optional<ingest::StoreRequest> request =
      preparation.prepareRun(archivePath(options), options.switches, options.dates, sources);
  if (!request || !run.start(*request))
    return kFailed;
  QCoreApplication::exec();
  print(stdout, summary);
  // A damaged archive or a failing tags row was reported on standard error during the run.
  return dialogs.lastCriticalMessage().isEmpty() ? kOk : kFailed;
}

int runList(const CliOptions& options) {
  ConsoleDialogs dialogs;
  ConsoleProgress progress(ConsoleProgress::detectMode());
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  const QString path = archivePath(options);
  archive.openDB(path);
  if (archive.openFailed)
    return kFailed;
  QElapsedTimer clock;
  clock.start();
  archive.sqlText = archive::listAllStatement();
  list.onlyAttachments = 0;
  list.retrieve(path);
  const double seconds = clock.nsecsElapsed() / 1e9;
  if (!dialogs.lastCriticalMessage().isEmpty())
    return kFailed;
  print(stdout, list.dbCountText() + QLatin1Char('\n') + list.listCountText() +
                    QStringLiteral("\nListed in %1 s\n").arg(seconds, 0, 'f', 3));
  return kOk;
}

int runCommand(QCoreApplication& app) {
  const CliOptions options = CliOptions::parse(app.arguments().mid(1));
  if (!options.error.isEmpty()) {
    print(stderr,
          QStringLiteral("quillery-cli: %1\nTry 'quillery-cli --help'.\n").arg(options.error));
    return kUsage;
  }
  switch (options.command) {
    case CliOptions::Command::Help:
      print(stdout, CliOptions::helpText());
      return kOk;
    case CliOptions::Command::Version:
      print(stdout,
            QStringLiteral("quillery-cli %1\n").arg(QCoreApplication::applicationVersion()));
      return kOk;
    case CliOptions::Command::Store:
      return runStore(app, options);
    case CliOptions::Command::List:
      return runList(options);
  }
  return kUsage;
}

}  // namespace
}  // namespace quillery::cli

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  // The window's preferences live under these names; the archive path default is read there.
  QCoreApplication::setOrganizationName(QStringLiteral("Quillery"));
  QCoreApplication::setApplicationName(QStringLiteral("Quillery"));
  QCoreApplication::setApplicationVersion(QStringLiteral(QUILLERY_VERSION));
  return quillery::cli::runCommand(app);
}
