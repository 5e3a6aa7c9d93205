#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli list`: lists every message of the archive through the result list, as the
// window's listing does, and prints the archive's count, the list's count and the seconds
// the listing took.
class ListCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
