#pragma once

#include <QByteArrayView>
#include <QChar>
#include <QString>

namespace quillery::text {

// The platform's default 8-bit encoding, the fallback for bytes that are not UTF-8. It is
// Windows-1252 as Windows and the WHATWG encoding standard define it: the five bytes that
// have no character of their own (0x81, 0x8D, 0x8F, 0x90, 0x9D) become the control
// characters of the same number, so every byte sequence decodes and none is lost.
class Windows1252 {
 public:
  // Writes one UTF-16 unit per byte at out and returns the end of what it wrote.
  static QChar* decode(QChar* out, QByteArrayView bytes);
  static QString toString(QByteArrayView bytes);
};

}  // namespace quillery::text
