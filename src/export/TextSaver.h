#pragma once

#include <QList>
#include <QString>
#include <optional>

#include "export/ExportPorts.h"
#include "export/ExportSession.h"

namespace quillery::search {
class Emailrow;
}

namespace quillery::exporting {

// The plain-text saves of the result list and the text that printing puts on paper. Each
// works on the selected rows (display row numbers, walked in ascending order) or on the
// whole list, both in the order the user sees it, and writes UTF-8 into the file the user
// chose (savePath, "" when the save panel was cancelled):
// - text blocks: "ID: ", "DATE: ", "FROM: ", "TO: ", "SUBJECT: " and "MAILBOX: " lines, an
//   empty line and the body, each block followed by "\n\n";
// - raw sources: each stored source, after a "From " + sender + two blanks + the list's date
//   line when it does not begin with "From " itself; messages without one are left out;
// - list lines: the list's own fields joined by tabs, as the list holds them.
// A failed read shows "SQL error: %s" and stops with the file ending after the last whole
// message (the progress panel stays up, as it always has); a failed write stops the same
// way with an alert that names the file.
class TextSaver {
 public:
  explicit TextSaver(ExportPorts& ports) : ports_(ports) {}

  // List lines: a file that cannot be made (an empty path too) shows "Couldn't open %s".
  ExportOutcome saveList(const QString& savePath);
  // Text blocks of the selected rows: an empty path ends silently, a file that cannot be
  // made shows "Couldn't open %s".
  ExportOutcome saveSelected(const QString& savePath, QList<int> selectedRows);
  // Text blocks of the whole list. The path is not checked: with an empty or unwritable
  // one the save runs to its end, writes nothing and still shows its completion alert.
  ExportOutcome saveAll(const QString& savePath);
  // Raw sources of the selected rows or the whole list: a file that cannot be made (an
  // empty path too) ends the save silently.
  ExportOutcome saveOrigSelected(const QString& savePath, QList<int> selectedRows);
  ExportOutcome saveOrigAll(const QString& savePath);

  // The text to print: the text block and "\n\n" of each selected row, or of every row
  // when all is set. Nothing (after "SQL error: %s") when a read fails. No transaction.
  std::optional<QString> printText(QList<int> selectedRows, bool all);

  // The list line of a row, its line feed included.
  static QString listLine(const search::Emailrow& row);
  // The row callback of the text-block query: rowText becomes the block of the row (id,
  // date, from, to, subject, mailbox, body; a NULL column adds nothing after its label).
  // Context: TextSaver*.
  static int printTextCallback(void* context, int columns, char** values, char** names);

  // The text block of the message read last; a message without an email row leaves it as
  // it was, so the block before is written again in its place.
  QString rowText;

 private:
  // The messages a save walks: the selected display rows, or every row.
  struct Walk {
    bool all = true;
    QList<int> rows;  // ascending
  };
  enum class Kind { Blocks, RawSources };
  enum class Step { Written, Skipped, ReadFailed };
  ExportOutcome saveMessages(const QString& savePath, Kind kind, Walk walk, bool checked);
  // Writes the block or the source of one message (not ending it); a failed read has shown
  // its alert. number is what the progress panel shows for it.
  Step writeBlock(const search::Emailrow& row, int number, ExportWriter& out);
  Step writeRawSource(const search::Emailrow& row, int number, ExportWriter& out);
  archive::ExecResult readBlock(int id);
  int walkSize(const Walk& walk) const;
  const search::Emailrow* walkRow(const Walk& walk, int i) const;

  ExportPorts& ports_;
};

}  // namespace quillery::exporting
