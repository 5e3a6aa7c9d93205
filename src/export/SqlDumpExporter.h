#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "export/ExportPorts.h"
#include "export/ExportSession.h"
#include "export/MessageRows.h"

namespace quillery::exporting {

// Writes the result list, in the order the user sees it, as an SQL script that a MySQL or
// MariaDB server loads: a database named after the file, the four archive tables in MySQL
// form, and one INSERT per message, tags row, raw source and attachment. The messages are
// numbered from a starting number the user gives, so that the script can add to a database
// that already holds messages. The script is UTF-8 text; the program never runs it.
class SqlDumpExporter {
 public:
  // The id panel: runs modally and answers the starting number, or nothing when cancelled.
  using AskFirstId = std::function<std::optional<int>()>;

  SqlDumpExporter(ExportPorts& ports, QString& exportPath)
      : ports_(ports), exportPath_(exportPath), rows_(ports.archive) {}

  // Asks for the file ("Enter Database Name", the name ending in ".sql"), then for the
  // starting number, and writes the script with writeScript(). A cancelled save panel
  // empties exportPath; a cancelled id panel ends the export before any file is made.
  ExportOutcome exportSQL(const AskFirstId& askFirstId, bool origState);

  // Writes the script into the file at path (replacing it). Raw sources are included only
  // when origState is on. A file that cannot be made shows "Couldn't open %s"; a failed read
  // shows "SQL error: %s" and a failed write says which file could not be written. After a
  // failure the script ends with the last message written whole and the reading transaction
  // is not committed.
  ExportOutcome writeScript(const QString& path, int firstId, bool origState);

  // The database the script fills: the file's name with every ".sql" removed.
  static QString databaseName(const QString& path);
  // The head of the script for that database: the database, the four tables and the
  // character set line.
  static QString scriptHead(const QString& database);

 private:
  // Reads one message and writes its statements.
  ExportSession::Step exportOne(ExportSession& session, int position, int newId, bool origState,
                                ExportWriter& out);
  void appendEmail(QString& script, int newId) const;
  void appendTags(QString& script, int newId) const;
  void appendAttachments(QString& script, int newId) const;

  ExportPorts& ports_;
  QString& exportPath_;
  MessageRows rows_;
};

}  // namespace quillery::exporting
