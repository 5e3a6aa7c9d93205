#include "text/Windows1252.h"

namespace quillery::text {
namespace {

// 0x80 to 0x9F; every other byte is the Latin-1 character of the same number.
constexpr char16_t kHighControls[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,  //
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,  //
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,  //
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

}  // namespace

QChar* Windows1252::decode(QChar* out, QByteArrayView bytes) {
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    *out++ = (byte >= 0x80 && byte <= 0x9F) ? QChar(kHighControls[byte - 0x80]) : QChar(byte);
  }
  return out;
}

QString Windows1252::toString(QByteArrayView bytes) {
  QString text(bytes.size(), Qt::Uninitialized);
  decode(text.data(), bytes);
  return text;
}

}  // namespace quillery::text
