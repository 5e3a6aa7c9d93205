#pragma once

#include <QString>
#include <QStringView>

namespace quillery::text {

// How user text goes between the double quote characters of an SQLite statement. Storing,
// the merge and the archive export escape every text they put into a statement this way.
class SqlEscape {
 public:
  // First every backslash becomes two backslashes, then every double quote becomes two
  // double quotes. SQLite keeps the doubled backslashes, so the archive holds every
  // backslash of the mail twice; readers of the archive expect that.
  static void escapeSqlText(QString& text);
  // Appends text to out escaped as escapeSqlText would escape it, without a copy between.
  static void appendEscaped(QString& out, QStringView text);
  // Removes every line end ("\n") from text.
  static void removeNewlines(QString& text) { text.remove(QLatin1Char('\n')); }
};

}  // namespace quillery::text
