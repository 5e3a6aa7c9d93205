#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli merge FILE`: copies the messages of another archive file that the archive
// does not hold yet, as the window's merge does, once --yes confirms it, and prints the
// counts.
class MergeCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
