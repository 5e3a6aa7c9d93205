#include "text/SqlEscape.h"

namespace quillery::text {

void SqlEscape::appendEscaped(QString& out, QStringView text) {
  // Doubling every backslash and then every double quote is the same as doubling each of
  // them in one pass. The searches run over whole stretches (attachments are long and
  // mostly free of both), and the stretches between are copied as they are.
  const QChar backslash(u'\\');
  const QChar quote(u'"');
  qsizetype nextBackslash = text.indexOf(backslash);
  qsizetype nextQuote = text.indexOf(quote);
  qsizetype from = 0;
  while (nextBackslash >= 0 || nextQuote >= 0) {
    const bool isBackslash = nextQuote < 0 || (nextBackslash >= 0 && nextBackslash < nextQuote);
    const qsizetype at = isBackslash ? nextBackslash : nextQuote;
    out.append(text.mid(from, at + 1 - from));
    out.append(text.at(at));
    from = at + 1;
    if (isBackslash)
      nextBackslash = text.indexOf(backslash, from);
    else
      nextQuote = text.indexOf(quote, from);
  }
  out.append(text.mid(from));
}

void SqlEscape::escapeSqlText(QString& text) {
  if (!text.contains(u'\\') && !text.contains(u'"'))
    return;  // untouched and still shared
  QString escaped;
  escaped.reserve(text.size() + text.size() / 8 + 16);
  appendEscaped(escaped, text);
  text = std::move(escaped);
}

}  // namespace quillery::text
