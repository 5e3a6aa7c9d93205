#include "cli/StoreCommand.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDate>
#include <QFileInfo>
#include <QSocketNotifier>
#include <csignal>

#include "archive/Archive.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/ConsoleDialogs.h"
#include "cli/ConsoleProgress.h"
#include "ingest/CurrentMessage.h"
#include "ingest/StorePreparation.h"
#include "ingest/StoreRun.h"
#include "ingest/StoreRunCounters.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"

namespace quillery::cli {
namespace {

// "YYYY-MM-DD" as the pop-up titles of the store-date panel; false when not a real day.
bool parseDay(const QString& text, ingest::StoreDate& date) {
  const QDate day = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
  if (!day.isValid() || text.size() != 10)
    return false;
  date = {text.mid(5, 2), text.mid(8, 2), text.left(4)};
  return true;
}

void takeSources(CommandLine& line, const QString& option, StoreCommand::SourceKind kind,
                 StoreCommand::Options& options) {
  if (options.sourceKind != StoreCommand::SourceKind::None) {
    line.fail(QStringLiteral("give only one of --mbox, --accounts and --mailboxes"));
    return;
  }
  options.sourceKind = kind;
  options.sources = line.values(option);
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

}  // namespace

StoreCommand::Options StoreCommand::parse(CommandLine& line) {
  Options options;
  auto& sw = options.switches;
  QString name;
  while (line.next(name)) {
    if (line.takeArchive(name)) {
    } else if (name == QLatin1String("--mbox")) {
      takeSources(line, name, SourceKind::Mbox, options);
    } else if (name == QLatin1String("--accounts")) {
      takeSources(line, name, SourceKind::Accounts, options);
    } else if (name == QLatin1String("--mailboxes")) {
      takeSources(line, name, SourceKind::Mailboxes, options);
    } else if (name == QLatin1String("--begin") || name == QLatin1String("--end")) {
      const QString day = line.value(name);
      auto& date = name == QLatin1String("--begin") ? options.dates.begin : options.dates.end;
      if (!line.failed() && !parseDay(day, date))
        line.fail(QStringLiteral("%1 wants a day as YYYY-MM-DD, not '%2'").arg(name, day));
    } else if (name == QLatin1String("--no-attachments")) {
      sw.attachState = false;
    } else if (name == QLatin1String("--no-html")) {
      sw.htmlState = false;
    } else if (name == QLatin1String("--trash")) {
      sw.trashState = true;
    } else if (name == QLatin1String("--all-mailboxes")) {
      sw.allmbState = true;
    } else if (name == QLatin1String("--no-source")) {
      sw.origState = false;
    } else if (name == QLatin1String("--progress-lines")) {
      options.progressLines = true;
    } else {
      line.fail(QStringLiteral("unknown option '%1'").arg(name));
    }
  }
  if (!line.failed() && options.sourceKind == SourceKind::None)
    line.fail(QStringLiteral("store needs --mbox, --accounts or --mailboxes"));
  sw.mailboxesState = options.sourceKind == SourceKind::Mailboxes;
  options.archivePath = line.archivePath();
  return options;
}

int StoreCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  const Options options = parse(line);
  if (line.failed())
    return usageError(line.error());
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
    case SourceKind::Mbox:
      for (const QString& file : options.sources)
        mboxFiles.append(QFileInfo(file).absoluteFilePath());
      preparation.useMboxFiles(mboxFiles);
      break;
    case SourceKind::Accounts:
      sources.accountList = options.sources;
      break;
    case SourceKind::Mailboxes:
      sources.mailboxList = options.sources;
      break;
    case SourceKind::None:
      break;
  }

  QString summary;
  QObject::connect(&run, &ingest::StoreRun::finished, qApp, [&](const QString& text) {
    summary = text;
    QCoreApplication::quit();
  });
  cancelOnSignals(run, qApp);
  const std::optional<ingest::StoreRequest> request =
      preparation.prepareRun(options.archivePath, options.switches, options.dates, sources);
  if (!request || !run.start(*request))
    return kFailed;
  QCoreApplication::exec();
  print(stdout, summary);
  // A damaged archive or a failing tags row was reported on standard error during the run.
  return dialogs.lastCriticalMessage().isEmpty() ? kOk : kFailed;
}

QString StoreCommand::synopsis() {
  return QStringLiteral(
      "  quillery-cli store [--archive PATH] (--mbox PATH... | --accounts NAME... |\n"
      "                     --mailboxes LINE...) [--begin YYYY-MM-DD] [--end YYYY-MM-DD]\n"
      "                     [--no-attachments] [--no-html] [--trash] [--all-mailboxes]\n"
      "                     [--no-source] [--progress-lines]\n");
}

QString StoreCommand::help() {
  return QStringLiteral(
      "store: store the messages of the given sources, then print the summary. The run is\n"
      "the window's own store run: the same parser tool (domail, beside this program), the\n"
      "same duplicate handling (a message already in the archive is replaced and keeps its\n"
      "tags), the same store log (ARCHIVE.storelog) and summary. The confirmation that the\n"
      "window asks is taken as given; Ctrl-C cancels and keeps what was stored.\n"
      "  Sources (exactly one kind):\n"
      "  --mbox PATH...        mbox files, Apple Mail \"Export Mailbox\" folders, Maildir\n"
      "                        folders, folders of .eml files, Thunderbird profiles.\n"
      "  --accounts NAME...    Apple Mail account folders under $HOME/Library/Mail; their\n"
      "                        In and Sent boxes are stored, and the local \"Mailboxes\".\n"
      "  --mailboxes LINE...   single mailboxes, as findmail lists them.\n"
      "  --begin YYYY-MM-DD    Store only messages dated on or after this day.\n"
      "  --end YYYY-MM-DD      Store only messages dated on or before this day.\n"
      "  --no-attachments      Do not store attachments.\n"
      "  --no-html             Do not store HTML parts as attachments.\n"
      "  --trash               Also store the Trash and Junk mailboxes (accounts).\n"
      "  --all-mailboxes       Store every mailbox of the accounts, not only In and Sent.\n"
      "  --no-source           Do not keep each message's raw source.\n"
      "  --progress-lines      Write \"TITLE COUNT SECONDS\" to standard error every 1,000\n"
      "                        messages instead of the terminal's progress line.\n"
      "  Exit status 0 also when some files were invalid (see the summary); 1 also when\n"
      "  domail is missing beside this program.\n");
}

}  // namespace quillery::cli
