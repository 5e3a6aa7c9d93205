#include "cli/ListCommand.h"

#include <QElapsedTimer>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/ConsoleDialogs.h"
#include "cli/ConsoleProgress.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"

namespace quillery::cli {

QString ListCommand::synopsis() {
  return QStringLiteral("  quillery-cli list [--archive PATH]\n");
}

QString ListCommand::help() {
  return QStringLiteral(
      "list: list every message of the archive and print the counts and the seconds the\n"
      "listing took.\n");
}

int ListCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QString argument;
  while (line.next(argument)) {
    if (!line.takeArchive(argument))
      line.fail(QStringLiteral("unknown option '%1' for list").arg(argument));
  }
  if (line.failed())
    return usageError(line.error());

  ConsoleDialogs dialogs;
  ConsoleProgress progress(ConsoleProgress::detectMode());
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  const QString path = line.archivePath();
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

}  // namespace quillery::cli
