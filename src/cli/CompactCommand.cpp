#include "cli/CompactCommand.h"

#include "archive/maintenance/Compaction.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/MaintenanceSession.h"

namespace quillery::cli {

QString CompactCommand::synopsis() {
  return QStringLiteral("  quillery-cli compact [--archive PATH]\n");
}

QString CompactCommand::help() {
  return QStringLiteral(
      "compact: rebuild the archive file in place to give back the space of deleted\n"
      "messages.\n");
}

int CompactCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QString argument;
  while (line.next(argument)) {
    if (!takeCommonOption(line, argument, nullptr))
      line.fail(QStringLiteral("unknown option '%1' for compact").arg(argument));
  }
  if (line.failed())
    return usageError(line.error());
  MaintenanceSession session(true);
  const bool done =
      maintenance::Compaction(session.archive, session.progress).compactDB(line.archivePath());
  return session.exitCode(done, QStringLiteral("compact"));
}

}  // namespace quillery::cli
