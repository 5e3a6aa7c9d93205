#pragma once

#include <QString>
#include <QStringView>

namespace quillery::exporting {

// How the SQL script puts a value between single quotes for a MySQL server. The fields are
// quoted differently on purpose, and the script keeps it so: from, to, mailbox and mailto
// get their single quotes doubled but their backslashes left alone (so the server reads a
// backslash there as the start of an escape); the date and an attachment's type are written
// as they stand; every other text gets its backslashes doubled and then its single quotes.
class MySqlQuoting {
 public:
  // Appends text with every single quote doubled.
  static void appendQuotesDoubled(QString& out, QStringView text);
  // Appends text with every backslash doubled, then every single quote doubled.
  static void appendEscaped(QString& out, QStringView text);
};

}  // namespace quillery::exporting
