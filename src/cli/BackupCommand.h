#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli backup`: copies the archive file to a backup file, as the window's backup
// does; the file is the --to value, else the backup path the window keeps, else the archive's
// name followed by ".bak" beside it. The path used is kept as the window's backup path.
class BackupCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
