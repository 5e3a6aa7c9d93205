#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli compact`: rebuilds the archive file in place to give back the space of
// deleted messages, as the window's compaction does.
class CompactCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
