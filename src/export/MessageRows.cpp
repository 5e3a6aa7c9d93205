#include "export/MessageRows.h"

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "archive/Statements.h"

namespace quillery::exporting {

archive::ExecResult MessageRows::readEmail(int id) {
  return archive_.exec(QString::fromLatin1(archive::kEmailRecordStatement).arg(id),
                       archive::emailRecordCallback, &record);
}

archive::ExecResult MessageRows::readTags(int id) {
  tags.clearTags();
  return archive_.exec(QString::fromLatin1(archive::kTagRecordStatement).arg(id),
                       archive::tagRecordCallback, &tags);
}

archive::ExecResult MessageRows::readRawSource(const char* statement, int id) {
  archive_.sqlResult.clear();
  return archive_.exec(QString::fromLatin1(statement).arg(id), archive::singleValueCallback,
                       &archive_);
}

archive::ExecResult MessageRows::readAttachments(int id) {
  archive_.columnValues.clear();
  archive_.columnRowCount = 0;
  return archive_.exec(QStringLiteral("SELECT type_fld,filename_fld,encode_fld,attach_fld FROM "
                                      "attachments WHERE id=%1")
                           .arg(id),
                       archive::columnListCallback, &archive_);
}

void MessageRows::cutAttachmentList(QString& body) {
  const qsizetype marker = body.indexOf(QLatin1String("ATTACHMENTS:"));
  if (marker >= 0)
    body.truncate(marker);
}

}  // namespace quillery::exporting
