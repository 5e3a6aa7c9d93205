#include "ingest/SqlText.h"

namespace quillery::ingest {

void SqlText::escapeSqlText(QString& text) {
  // The order is fixed: the other way round, the backslash before a doubled quote would be
  // doubled as well.
  text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
  text.replace(QLatin1Char('"'), QLatin1String("\"\""));
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
