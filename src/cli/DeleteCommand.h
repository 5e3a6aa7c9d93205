#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli delete ID...`: deletes messages, or only their attachments, from the archive
// after the window's confirmation, through the window's own classes.
class DeleteCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
