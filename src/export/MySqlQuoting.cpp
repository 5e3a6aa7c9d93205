#include "export/MySqlQuoting.h"

namespace quillery::exporting {
namespace {

// Appends text with each of the given characters written twice. Doubling backslashes and
// then quotes is the same as doubling both in one pass.
void appendDoubling(QString& out, QStringView text, bool backslashes) {
  qsizetype from = 0;
  for (qsizetype i = 0; i < text.size(); ++i) {
    const QChar c = text[i];
    if (c == u'\'' || (backslashes && c == u'\\')) {
      out.append(text.mid(from, i + 1 - from));
      out.append(c);
      from = i + 1;
    }
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
