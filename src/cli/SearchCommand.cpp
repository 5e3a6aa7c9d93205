#include "cli/SearchCommand.h"

#include "cli/ArchiveSession.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/SearchOptions.h"

namespace quillery::cli {

QString SearchCommand::synopsis() {
  return QStringLiteral("  quillery-cli search [--archive PATH] ") + SearchOptions::synopsis() +
         QStringLiteral("\n                      [--sql]\n");
}

QString SearchCommand::help() {
  return QStringLiteral(
             "search: list the messages that the search panel's fields describe, in date order:\n"
             "one line per message (id, date with \"*\" when tagged, from, to, subject and\n"
             "mailbox, separated by tabs), then the archive's and the list's counts.\n") +
         SearchOptions::help() +
         QStringLiteral(
             "  --sql                 First print the statement that was run (and the\n"
             "                        view an attachment search makes).\n");
}

int SearchCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  SearchOptions options;
  bool showSql = false;
  QString argument;
  while (line.next(argument)) {
    if (line.takeArchive(argument) || options.take(line, argument))
      continue;
    if (argument == QLatin1String("--sql"))
      showSql = true;
    else
      line.fail(QStringLiteral("unknown option '%1' for search").arg(argument));
  }
  if (line.failed())
    return usageError(line.error());

  ArchiveSession session;
  QString viewSql;
  if (!options.listMessages(session, line.archivePath(), &viewSql))
    return kFailed;
  if (showSql) {
    if (!viewSql.isEmpty())
      print(stdout, viewSql + QLatin1Char('\n'));
    print(stdout, session.archive.sqlText + QLatin1Char('\n'));
  }
  if (session.failed())
    return kFailed;
  QString out;
  for (int row = 0; row < session.list.emailRows.size(); ++row)
    out += ArchiveSession::listLine(session.list.rowAt(row));
  print(stdout, out + session.list.dbCountText() + QLatin1Char('\n') +
                    session.list.listCountText() + QLatin1Char('\n'));
  return kOk;
}

}  // namespace quillery::cli
