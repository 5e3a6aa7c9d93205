#include "search/AttachmentLink.h"

namespace quillery::search {

QString AttachmentLink::pathFor(const QString& tempDir, int position, const QString& fileName) {
  return tempDir + QLatin1Char('/') + QString::number(position) + QLatin1String(kMarker) + fileName;
}

AttachmentLink::Parts AttachmentLink::parse(const QString& link) {
  const QString component = link.mid(link.lastIndexOf(QLatin1Char('/')) + 1);
  const qsizetype marker = component.indexOf(QLatin1String(kMarker));
  if (marker < 0)
    return {};
  bool ok = false;
  const int position = component.left(marker).toInt(&ok);
  if (!ok || position < 0)
    return {};
  return {position, component.mid(marker + qsizetype(sizeof(kMarker)) - 1)};
}

}  // namespace quillery::search
