#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli tag ID...`: gives the messages the tag panel's values, replacing their tags
// as a whole, through the window's own classes.
class TagCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
