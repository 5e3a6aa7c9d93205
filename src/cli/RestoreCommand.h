#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli restore`: copies the backup file (the --from value, else the backup path the
// window keeps) over the archive file, as the window's restore does, once --yes confirms it.
class RestoreCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
