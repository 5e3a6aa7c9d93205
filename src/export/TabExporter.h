#pragma once

#include <QString>

#include "export/ExportPorts.h"

namespace quillery::exporting {

class ExportSession;

// Writes the result list, in the order the user sees it, as tab-delimited UTF-8 text for
// spreadsheets: a header line, then one line per message with its id, date, from, to,
// subject, mailto, mailbox, whole body, number of attachments and, when origState is on,
// raw source. Every field is kept on its line: a tab becomes a blank, a carriage return or
// a line feed a vertical tab; nothing is quoted.
class TabExporter {
 public:
  TabExporter(ExportPorts& ports, QString& exportPath) : ports_(ports), exportPath_(exportPath) {}

  // Asks for the file ("Save Exported Tab-Delimited File", the name used as typed) and
  // writes it with writeTab(). A cancelled panel empties exportPath.
  ExportOutcome exportTab(bool origState);

  // Writes the file at path (replacing it) and ends with the completion alert. A file that
  // cannot be made shows "Couldn't open %s"; a failed read of a message shows "SQL error: %s"
  // and a failed write says which file could not be written; either way the file ends with
  // the last whole line. A message whose email row is gone repeats the line before it.
  ExportOutcome writeTab(const QString& path, bool origState);

  // The row callback: rowText becomes the row's columns, each cleaned, joined by tabs (a
  // NULL column is empty). Context: TabExporter*.
  static int tabRowCallback(void* context, int columns, char** values, char** names);
  // Cleans one field in place as the format requires.
  static void cleanField(QString& field);

  // The line being built, as the callback left it.
  QString rowText;

 private:
  ExportPorts& ports_;
  QString& exportPath_;
};

}  // namespace quillery::exporting
