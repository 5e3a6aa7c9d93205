#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// `quillery-cli search`: the search panel's search (or, with --where, the SQL panel's
// statement) through the window's own classes; prints one list line per message in date
// order, then the archive's and the list's counts, and with --sql the statement it ran.
class SearchCommand {
 public:
  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
};

}  // namespace quillery::cli
