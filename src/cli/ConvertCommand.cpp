#include "cli/ConvertCommand.h"

#include "archive/maintenance/FormatConversion.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/MaintenanceSession.h"

namespace quillery::cli {

QString ConvertCommand::synopsis() {
  return QStringLiteral("  quillery-cli convert [--archive PATH] [--yes]\n");
}

QString ConvertCommand::help() {
  return QStringLiteral(
      "convert: convert an archive file of the format before 7.4.1 (no attachment counts)\n"
      "in place to the current format. Asks first: without --yes nothing is changed and the\n"
      "exit status is 1. Back the file up before.\n");
}

int ConvertCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QString argument;
  bool yes = false;
  while (line.next(argument)) {
    if (!takeCommonOption(line, argument, &yes))
      line.fail(QStringLiteral("unknown option '%1' for convert").arg(argument));
  }
  if (line.failed())
    return usageError(line.error());
  MaintenanceSession session(yes);
  // No store run keeps a log open here: a count that cannot be stored goes to standard error.
  maintenance::FormatConversion conversion(session.archive, session.list, session.dialogs,
                                           session.progress);
  const bool done = conversion.convertDBFormat(line.archivePath());
  return session.exitCode(done, QStringLiteral("convert"));
}

}  // namespace quillery::cli
