#include "cli/MergeCommand.h"

#include <QFileInfo>

#include "archive/maintenance/DatabaseMerge.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/MaintenanceSession.h"

namespace quillery::cli {

QString MergeCommand::synopsis() {
  return QStringLiteral("  quillery-cli merge FILE [--archive PATH] [--yes]\n");
}

QString MergeCommand::help() {
  return QStringLiteral(
      "merge: copy into the archive the messages of the archive file FILE that it does not\n"
      "hold yet (same date, To and From), with their tags, sources and attachments. Asks\n"
      "first: without --yes nothing is changed and the exit status is 1.\n");
}

int MergeCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QString argument;
  QString mergePath;
  bool yes = false;
  while (line.next(argument)) {
    if (takeCommonOption(line, argument, &yes))
      continue;
    if (argument.startsWith(QLatin1String("--")) || !mergePath.isEmpty())
      line.fail(QStringLiteral("unknown argument '%1' for merge").arg(argument));
    else
      mergePath = QFileInfo(argument).absoluteFilePath();
  }
  if (!line.failed() && mergePath.isEmpty())
    line.fail(QStringLiteral("merge needs the FILE to merge"));
  if (line.failed())
    return usageError(line.error());
  // The window's panel offers only files that exist; opening a mistyped name would make an
  // empty archive of it.
  if (!QFileInfo::exists(mergePath)) {
    print(stderr, QStringLiteral("quillery-cli: no file to merge at %1\n").arg(mergePath));
    return kFailed;
  }
  MaintenanceSession session(yes);
  maintenance::DatabaseMerge merge(session.archive, session.list, session.dialogs,
                                   session.progress);
  const bool done = merge.mergeFile(line.archivePath(), mergePath);
  return session.exitCode(done, QStringLiteral("merge"));
}

}  // namespace quillery::cli
