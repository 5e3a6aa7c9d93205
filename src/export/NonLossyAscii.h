#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace quillery::exporting {

// The non-lossy 7-bit ASCII form in which the mbox export writes raw sources. ASCII stays as
// it is, except that a backslash becomes two; U+0080 to U+00FF become a backslash and three
// octal digits ("ü" is "\374"); every other character becomes a backslash, "u" and four
// lower-case hex digits, a character beyond U+FFFF as its two UTF-16 halves. Every output
// byte is below 0x80, and decode() gives the text back exactly.
class NonLossyAscii {
 public:
  static QByteArray encode(QStringView text);
  // Appends the encoding of text to out.
  static void appendEncoded(QByteArray& out, QStringView text);
  // The text that encode() made; an escape that encode() never writes is kept as it stands.
  static QString decode(QByteArrayView ascii);
};

}  // namespace quillery::exporting
