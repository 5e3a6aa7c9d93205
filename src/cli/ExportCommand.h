#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli export`: lists the messages of the archive (all of them, or those a WHERE
// condition picks, in the order of a column, ascending or descending) as the window's result
// list does, and writes them out in one of the window's export formats: mbox, SQL script,
// archive file, tab-delimited text, text blocks, raw sources or list lines.
class ExportCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
