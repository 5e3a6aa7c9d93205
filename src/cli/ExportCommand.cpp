#include "cli/ExportCommand.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include "cli/ArchiveSession.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/SearchOptions.h"
#include "export/ExportFormat.h"
#include "search/ResultList.h"

namespace quillery::cli {
namespace {

// The list's columns by the names the command line uses.
const QHash<QString, QString> kColumns = {{"id", "emailID"},          {"attachments", "emailAtch"},
                                          {"date", "emailDate"},      {"from", "emailFrom"},
                                          {"to", "emailTo"},          {"subject", "emailSubject"},
                                          {"mailbox", "emailMailbox"}};

struct ExportOptions {
  exporting::ExportRequest request;
  bool formatGiven = false;
  SearchOptions search;
  QString sortColumn;
  bool descending = false;
};

void readOption(CommandLine& line, const QString& option, ExportOptions& options) {
  if (option == QLatin1String("--format")) {
    const QString name = line.value(option);
    const std::optional<exporting::ExportFormat> format = exporting::exportFormatNamed(name);
    options.formatGiven = format.has_value();
    options.request.format = format.value_or(exporting::ExportFormat::Mbox);
    if (!line.failed() && !format)
      line.fail(QStringLiteral("--format wants one of %1, not '%2'")
                    .arg(exporting::exportFormatNames().join(QLatin1Char('|')), name));
  } else if (option == QLatin1String("--output")) {
    options.request.path = line.value(option);
  } else if (option == QLatin1String("--sort")) {
    const QString column = line.value(option);
    options.sortColumn = kColumns.value(column);
    if (!line.failed() && options.sortColumn.isEmpty())
      line.fail(QStringLiteral("--sort wants one of id, attachments, date, from, to, subject, "
                               "mailbox, not '%1'")
                    .arg(column));
  } else if (option == QLatin1String("--descending")) {
    options.descending = true;
  } else if (option == QLatin1String("--first-id")) {
    const QString number = line.value(option);
    bool ok = false;
    options.request.firstId = number.toInt(&ok);
    if (!line.failed() && !ok)
      line.fail(QStringLiteral("--first-id wants a whole number, not '%1'").arg(number));
  } else if (option == QLatin1String("--no-source")) {
    options.request.origState = false;
  } else if (!line.takeArchive(option) && !options.search.take(line, option)) {
    line.fail(QStringLiteral("unknown option '%1' for export").arg(option));
  }
}

// Lists the messages as the search does, then puts them in the order the user asked for, as
// clicks on a column header would.
bool listMessages(ArchiveSession& session, const QString& path, const ExportOptions& options) {
  if (!options.search.listMessages(session, path) || session.failed())
    return false;
  search::ResultList& list = session.list;
  if (!options.sortColumn.isEmpty())
    list.clickColumn(options.sortColumn);
  if (options.descending && !options.sortColumn.isEmpty())
    list.clickColumn(options.sortColumn);
  else if (options.descending)
    list.sortDescending = true;
  return true;
}

}  // namespace

QString ExportCommand::synopsis() {
  return QStringLiteral(
             "  quillery-cli export [--archive PATH] --format mbox|sql|archive|tab|text|source|"
             "list\n                      --output FILE ") +
         SearchOptions::synopsis() +
         QStringLiteral(
             "\n                      [--sort COLUMN] [--descending] [--first-id N] "
             "[--no-source]\n");
}

QString ExportCommand::help() {
  return QStringLiteral(
      "export: write the listed messages out as the window's exports do; the completion\n"
      "message goes to standard output.\n"
      "  --format FORMAT       mbox (an mbox file), sql (a script for a MySQL or MariaDB\n"
      "                        server), archive (a new archive file), tab (tab-delimited\n"
      "                        text), text (the messages as text), source (their raw\n"
      "                        sources) or list (one line per message).\n"
      "  --output FILE         The file to write; an existing file is replaced.\n"
      "  The search options of the search command choose the messages; without any, every\n"
      "  message of the archive is exported, in date order.\n"
      "  --sort COLUMN         Order the list by id, attachments, date, from, to, subject or\n"
      "                        mailbox, as a click on the column does. Default: by date.\n"
      "  --descending          The list in descending order.\n"
      "  --first-id N          sql: number the messages of the script from N (default 1).\n"
      "  --no-source           sql, archive, tab: leave out the raw sources.\n");
}

int ExportCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  ExportOptions options;
  QString option;
  while (line.next(option))
    readOption(line, option, options);
  if (!line.failed() && (!options.formatGiven || options.request.path.isEmpty()))
    line.fail(QStringLiteral("export needs --format and --output"));
  if (line.failed())
    return usageError(line.error());

  ArchiveSession session;
  session.dialogs.reportResultsOnStandardOutput();
  if (!listMessages(session, line.archivePath(), options))
    return kFailed;
  // The save of all text blocks does not look whether its file can be made, and the save of
  // raw sources ends without a word when it cannot: a script needs to know either way.
  const QString& output = options.request.path;
  const bool folderExists = QFileInfo(QFileInfo(output).absolutePath()).isDir();
  exporting::ExportPorts ports{session.archive, session.list, session.dialogs, session.progress};
  const bool written =
      folderExists &&
      exporting::exportList(ports, options.request) == exporting::ExportOutcome::Done &&
      QFile::exists(output);
  if (!written && !session.failed())
    print(stderr, QStringLiteral("Couldn't open %1\n").arg(output));
  return written ? kOk : kFailed;
}

}  // namespace quillery::cli
