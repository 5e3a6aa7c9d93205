#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli show ID`: one message as the message view shows it (its text block, cut
// after "ATTACHMENTS:" and followed by the attachment names), its raw source, or one of its
// attachments decoded into a file, through the window's own classes.
class ShowCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
