#include "cli/ExportCommand.h"

#include <QFile>
#include <QFileInfo>
#include <QHash>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/ConsoleDialogs.h"
#include "cli/ConsoleProgress.h"
#include "export/ExportFormat.h"
#include "platform/qt/QtFiles.h"
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
  QString where;
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
  } else if (option == QLatin1String("--where")) {
    options.where = line.value(option);
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
  } else if (!line.takeArchive(option)) {
    line.fail(QStringLiteral("unknown option '%1' for export").arg(option));
  }
}

// Fills the list as a search would: the condition, then the order the user sees.
bool listMessages(archive::Archive& archive, search::ResultList& list, const QString& path,
                  const ExportOptions& options) {
  const QString where = options.where.isEmpty() ? QString() : " WHERE " + options.where;
  archive.sqlText = archive::listStatement(QString(where + QStringLiteral(" ORDER BY id")));
  list.retrieve(path);
  if (!archive.isOpen())  // the statement failed; its alert said why
    return false;
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
      "  quillery-cli export [--archive PATH] --format mbox|sql|archive|tab|text|source|list\n"
      "                      --output FILE [--where CONDITION] [--sort COLUMN] [--descending]\n"
      "                      [--first-id N] [--no-source]\n");
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
      "  --where CONDITION     List only the messages this SQL condition on the email table\n"
      "                        picks (date_fld, from_fld, to_fld, subj_fld, mailbox, ...).\n"
      "                        Default: every message.\n"
      "  --sort COLUMN         Order the list by id, attachments, date, from, to, subject or\n"
      "                        mailbox, as a click on the column does. Default: by id.\n"
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

  ConsoleDialogs dialogs;
  dialogs.informOnStandardOutput();
  ConsoleProgress progress(ConsoleProgress::detectMode());
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  const QString path = line.archivePath();
  archive.openDB(path);
  if (archive.openFailed || !listMessages(archive, list, path, options))
    return kFailed;
  // The save of all text blocks does not look whether its file can be made, and the save of
  // raw sources ends without a word when it cannot: a script needs to know either way.
  const QString& output = options.request.path;
  const bool folderExists = QFileInfo(QFileInfo(output).absolutePath()).isDir();
  exporting::ExportPorts ports{archive, list, dialogs, progress};
  const bool written =
      folderExists &&
      exporting::exportList(ports, options.request) == exporting::ExportOutcome::Done &&
      QFile::exists(output);
  if (!written && dialogs.lastCriticalMessage().isEmpty())
    print(stderr, QStringLiteral("Couldn't open %1\n").arg(output));
  return written ? kOk : kFailed;
}

}  // namespace quillery::cli
