#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli convert`: brings an archive file of the old format up to date in place, as
// the window's conversion does, once --yes confirms it.
class ConvertCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
