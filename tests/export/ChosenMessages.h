#pragma once

#include <QString>
#include <QStringList>

namespace quillery::archive {
class Archive;
}

namespace quillery::test {

// A handful of messages put into an archive row by row, chosen for the edges of the export
// formats: raw sources with and without their own "From " line, non-ASCII, a plist trailer,
// backslashes and both kinds of quote, tabs and CR LF line ends, multipart/alternative and
// multipart/mixed attachments, base64 data with a quote in it, tags rows with all, some or
// none of their values, a date that does not parse, and a listed message whose email row
// is gone by the time of the export. Their ids are 1 to 7 in that order.
struct ChosenMessages {
  // Inserts them on the archive's open connection; "" or SQLite's error.
  static QString insert(archive::Archive& archive);
  // Removes the email row of message 7 once the list holds it.
  static QString removeLastEmailRow(archive::Archive& archive);
  static constexpr int kCount = 7;
};

}  // namespace quillery::test
