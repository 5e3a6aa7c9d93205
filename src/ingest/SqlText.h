#pragma once

#include <QString>
#include <QStringView>

namespace quillery::ingest {

// The text rules that every statement built from user text follows, shared by storing and
// by the exports.
class SqlText {
 public:
  // Makes text fit to stand between double quote characters in an SQLite statement: first
  // every backslash becomes two backslashes, then every double quote becomes two double
  // quotes. SQLite keeps the doubled backslashes, so the archive holds every backslash of
  // the mail twice; readers of the archive expect that.
  static void escapeSqlText(QString& text);
  // Appends text to out escaped as escapeSqlText would escape it, without a copy between.
  static void appendEscaped(QString& out, QStringView text);

  // Cuts the mail client's property-list trailer from a raw message source: from the
  // "<?xml" that follows a point 100 characters before "Apple Computer//DTD PLIST" to the
  // end. A source without that marker, with the marker within its first 100 characters, or
  // without "<?xml" after the point (or only at its very start) is left as it is.
  static void stripPlist(QString& source);

  // Removes every line end ("\n") from text.
  static void removeNewlines(QString& text) { text.remove(QLatin1Char('\n')); }
};

}  // namespace quillery::ingest
