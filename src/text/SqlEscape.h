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
  // Appends text to out with every double quote doubled and every backslash left as it is,
  // so that SQLite stores exactly the characters of text. This is the form for text read back
  // from an archive and written into another one (the merge): its backslashes were doubled
  // when it was stored, and doubling them again on every copy would change the message.
  static void appendQuotesDoubled(QString& out, QStringView text);
  // Removes every line end ("\n") from text.
  static void removeNewlines(QString& text) { text.remove(QLatin1Char('\n')); }
};

}  // namespace quillery::text
