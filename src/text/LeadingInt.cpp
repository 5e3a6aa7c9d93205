#include "text/LeadingInt.h"

namespace quillery::text {

int leadingInt(QStringView text) {
  qsizetype i = 0;
  while (i < text.size() && text.at(i).isSpace())
    ++i;
  bool negative = false;
  if (i < text.size() && (text.at(i) == QLatin1Char('-') || text.at(i) == QLatin1Char('+'))) {
    negative = text.at(i) == QLatin1Char('-');
    ++i;
  }
  long long value = 0;
  for (; i < text.size() && text.at(i) >= QLatin1Char('0') && text.at(i) <= QLatin1Char('9'); ++i) {
    value = value * 10 + (text.at(i).unicode() - '0');
    if (value > 2147483647LL)
      return negative ? -2147483647 - 1 : 2147483647;
  }
  return static_cast<int>(negative ? -value : value);
}

}  // namespace quillery::text
