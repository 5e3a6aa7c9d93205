#include "export/NonLossyAscii.h"

namespace quillery::exporting {
namespace {

bool isPlain(char16_t c) {
  return c < 0x80 && c != u'\\';
}

int hexValue(char c) {
  if (c >= '0' && c <= '9')
    return c - '0';
  if (c >= 'a' && c <= 'f')
    return c - 'a' + 10;
  if (c >= 'A' && c <= 'F')
    return c - 'A' + 10;
  return -1;
}

bool isOctal(char c) {
  return c >= '0' && c <= '7';
}

}  // namespace

QByteArray NonLossyAscii::encode(QStringView text) {
  QByteArray out;
  appendEncoded(out, text);
  return out;
}

void NonLossyAscii::appendEncoded(QByteArray& out, QStringView text) {
  static constexpr char kHex[] = "0123456789abcdef";
  out.reserve(out.size() + text.size());
  qsizetype from = 0;
  const qsizetype size = text.size();
  while (from < size) {
    // Plain stretches, the bulk of any mail, are copied in one go.
    qsizetype to = from;
    while (to < size && isPlain(text[to].unicode()))
      ++to;
    if (to > from)
      out.append(text.mid(from, to - from).toLatin1());
    if (to == size)
      break;
    const char16_t c = text[to].unicode();
    if (c == u'\\') {
      out.append("\\\\", 2);
    } else if (c <= 0xff) {
      const char octal[] = {'\\', char('0' + (c >> 6)), char('0' + ((c >> 3) & 7)),
                            char('0' + (c & 7))};
      out.append(octal, 4);
    } else {
      const char hex[] = {
          '\\', 'u', kHex[c >> 12], kHex[(c >> 8) & 0xf], kHex[(c >> 4) & 0xf], kHex[c & 0xf]};
      out.append(hex, 6);
    }
    from = to + 1;
  }
}

QString NonLossyAscii::decode(QByteArrayView ascii) {
  QString out;
  out.reserve(ascii.size());
  for (qsizetype i = 0; i < ascii.size(); ++i) {
    const char c = ascii[i];
    if (c != '\\' || i + 1 >= ascii.size()) {
      out.append(QLatin1Char(c));
      continue;
    }
    const char next = ascii[i + 1];
    if (next == '\\') {
      out.append(QLatin1Char('\\'));
      ++i;
    } else if (i + 3 < ascii.size() && isOctal(next) && isOctal(ascii[i + 2]) &&
               isOctal(ascii[i + 3])) {
      out.append(QChar(
          char16_t(((next - '0') << 6) | ((ascii[i + 2] - '0') << 3) | (ascii[i + 3] - '0'))));
      i += 3;
    } else if (next == 'u' && i + 5 < ascii.size() && hexValue(ascii[i + 2]) >= 0 &&
               hexValue(ascii[i + 3]) >= 0 && hexValue(ascii[i + 4]) >= 0 &&
               hexValue(ascii[i + 5]) >= 0) {
      out.append(QChar(char16_t((hexValue(ascii[i + 2]) << 12) | (hexValue(ascii[i + 3]) << 8) |
                                (hexValue(ascii[i + 4]) << 4) | hexValue(ascii[i + 5]))));
      i += 5;
    } else {
      out.append(QLatin1Char(c));
    }
  }
  return out;
}

}  // namespace quillery::exporting
