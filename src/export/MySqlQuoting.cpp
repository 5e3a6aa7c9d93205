#include "export/MySqlQuoting.h"

namespace quillery::exporting {
namespace {

// Appends text with each single quote, and each backslash when asked, written twice. Doubling
// backslashes and then quotes is the same as doubling both in one pass; the stretches between
// them, most of any text, are copied whole.
void appendDoubling(QString& out, QStringView text, bool backslashes) {
  qsizetype nextQuote = text.indexOf(u'\'');
  qsizetype nextBackslash = backslashes ? text.indexOf(u'\\') : -1;
  qsizetype from = 0;
  while (nextQuote >= 0 || nextBackslash >= 0) {
    const bool quote = nextBackslash < 0 || (nextQuote >= 0 && nextQuote < nextBackslash);
    const qsizetype at = quote ? nextQuote : nextBackslash;
    out.append(text.mid(from, at + 1 - from));
    out.append(text[at]);
    from = at + 1;
    if (quote)
      nextQuote = text.indexOf(u'\'', from);
    else
      nextBackslash = text.indexOf(u'\\', from);
  }
  out.append(text.mid(from));
}

}  // namespace

void MySqlQuoting::appendQuotesDoubled(QString& out, QStringView text) {
  appendDoubling(out, text, false);
}

void MySqlQuoting::appendEscaped(QString& out, QStringView text) {
  appendDoubling(out, text, true);
}

}  // namespace quillery::exporting
