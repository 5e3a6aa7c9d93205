#include "cli/TagCommand.h"

#include "cli/ArchiveSession.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "search/CategoryList.h"
#include "search/Priorities.h"
#include "search/Tagging.h"

namespace quillery::cli {

QString TagCommand::synopsis() {
  return QStringLiteral(
      "  quillery-cli tag [--archive PATH] ID... [--category TEXT] [--keywords TEXT]\n"
      "                   [--notes TEXT] [--priority TITLE]\n");
}

QString TagCommand::help() {
  return QStringLiteral(
      "tag: give messages ID... these tags, replacing their tags as a whole: a field left\n"
      "out is stored empty, and with no field at all the tags are removed. Line breaks in\n"
      "the texts are not stored.\n"
      "  --category, --keywords, --notes TEXT\n"
      "  --priority TITLE      None, Highest, High, Medium, Low or Lowest (stored as 0 to 5).\n");
}

int TagCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  search::TagValues values;
  QList<int> ids;
  QString argument;
  while (line.next(argument)) {
    if (line.takeArchive(argument)) {
    } else if (argument == QLatin1String("--category")) {
      values.category = line.value(argument);
    } else if (argument == QLatin1String("--keywords")) {
      values.keywords = line.value(argument);
    } else if (argument == QLatin1String("--notes")) {
      values.notes = line.value(argument);
    } else if (argument == QLatin1String("--priority")) {
      values.priority = line.value(argument);
      if (!line.failed() && !search::priorityTitles().contains(values.priority))
        line.fail(QStringLiteral("--priority wants one of %1")
                      .arg(search::priorityTitles().join(QStringLiteral(", "))));
    } else if (!takeMessageId(argument, ids)) {
      line.fail(QStringLiteral("unknown option '%1' for tag").arg(argument));
    }
  }
  if (!line.failed() && ids.isEmpty())
    line.fail(QStringLiteral("tag needs at least one message id"));
  if (line.failed())
    return usageError(line.error());

  ArchiveSession session;
  if (!session.openWithMessages(line.archivePath(), ids, "tagged"))
    return kFailed;
  // The list's confirmation is printed here, on standard output.
  session.dialogs.silenceTitle(QStringLiteral("Done tagging email"));
  search::CategoryList categories(session.archive);
  search::Tagging tagging(session.archive, session.list, categories, session.dialogs,
                          session.progress);
  if (!tagging.addTags(values, session.allRows()) || session.failed())
    return kFailed;
  print(stdout, QStringLiteral("%1 emails have been tagged.\n").arg(ids.size()));
  return kOk;
}

}  // namespace quillery::cli
