#include "ingest/SqlText.h"

#include <algorithm>

namespace quillery::ingest {
namespace {

bool isDoubled(QChar c) {
  return c == QLatin1Char('\\') || c == QLatin1Char('"');
}

}  // namespace

void SqlText::escapeSqlText(QString& text) {
  // Doubling every backslash and then every double quote is the same as doubling each of
  // them in one pass, which leaves a text without them untouched and unshared.
  const QChar* begin = text.constData();
  const QChar* end = begin + text.size();
  const QChar* first = std::find_if(begin, end, isDoubled);
  if (first == end)
    return;
  QString escaped(text.size() + std::count_if(first, end, isDoubled), Qt::Uninitialized);
  QChar* out = std::copy(begin, first, escaped.data());
  for (const QChar* c = first; c != end; ++c) {
    *out++ = *c;
    if (isDoubled(*c))
      *out++ = *c;
  }
  text = std::move(escaped);
}

void SqlText::stripPlist(QString& source) {
  const qsizetype marker = source.indexOf(QLatin1String("Apple Computer//DTD PLIST"));
  const qsizetype searchStart = marker - 100;
  if (marker < 0 || searchStart < 0)
    return;
  const qsizetype xml = source.indexOf(QLatin1String("<?xml"), searchStart);
  if (xml >= 1 && xml < source.size())
    source.truncate(xml);
}

}  // namespace quillery::ingest
