#include "text/PlistTrailer.h"

namespace quillery::text {

void PlistTrailer::stripPlist(QString& source) {
  const qsizetype marker = source.indexOf(QLatin1String("Apple Computer//DTD PLIST"));
  const qsizetype searchStart = marker - 100;
  if (marker < 0 || searchStart < 0)
    return;
  const qsizetype xml = source.indexOf(QLatin1String("<?xml"), searchStart);
  if (xml >= 1 && xml < source.size())
    source.truncate(xml);
}

}  // namespace quillery::text
