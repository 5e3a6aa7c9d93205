#include "ingest/ToolChunk.h"

#include <QStringDecoder>

namespace quillery::ingest {

ToolChunk ToolChunk::read(const QByteArray& chunk) {
  QStringDecoder utf8(QStringDecoder::Utf8);
  QString text = utf8.decode(chunk);
  if (utf8.hasError())
    text = QStringLiteral("file path\nsubject line");

  const QLatin1String attachmentMark("attachment\n");
  const QLatin1String searchingMark("Looking for email");
  if (text.endsWith(attachmentMark))
    return {Kind::AttachmentStatus, {}};
  if (text.endsWith(searchingMark))
    return {Kind::SearchingStatus, {}};
  while (text.startsWith(attachmentMark) || text.startsWith(searchingMark))
    text.remove(0, text.startsWith(attachmentMark) ? attachmentMark.size() : searchingMark.size());
  return {Kind::Announcement, std::move(text)};
}

}  // namespace quillery::ingest
