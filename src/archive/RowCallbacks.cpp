#include "archive/RowCallbacks.h"

#include "archive/Archive.h"
#include "archive/Records.h"

namespace quillery::archive {
namespace {

QString text(char** values, int i) {
  return QString::fromUtf8(values[i]);
}

}  // namespace

int singleValueCallback(void* context, int /*columns*/, char** values, char** /*names*/) {
  auto* archive = static_cast<Archive*>(context);
  archive->sqlResult = values[0] ? text(values, 0) : QStringLiteral("0");
  return 0;
}

int columnListCallback(void* context, int columns, char** values, char** /*names*/) {
  auto* archive = static_cast<Archive*>(context);
  for (int i = 0; i < columns; ++i)
    archive->columnValues.append(text(values, i));
  ++archive->columnRowCount;
  return 0;
}

int idListCallback(void* context, int /*columns*/, char** values, char** /*names*/) {
  auto* state = static_cast<IdListState*>(context);
  // "%s" of a null string prints "(null)"; callers select only non-NULL ids.
  state->idList.append(values[0] ? values[0] : "(null)");
  ++state->idCount;
  return 0;
}

int emailRecordCallback(void* context, int columns, char** values, char** /*names*/) {
  auto* record = static_cast<EmailRecord*>(context);
  QString* fields[] = {&record->recDate,    &record->recFrom, &record->recTo,
                       &record->recSubject, &record->recBody, &record->recMailbox,
                       &record->recMailto};
  for (int i = 0; i < 7 && i < columns; ++i)
    *fields[i] = text(values, i);
  record->recNumAttach = (columns > 7 && values[7]) ? QByteArray(values[7]).toInt() : 0;
  return 0;
}

int tagRecordCallback(void* context, int columns, char** values, char** /*names*/) {
  if (columns == 0)
    return 0;
  auto* tags = static_cast<TagRecord*>(context);
  QString* fields[] = {&tags->tagCategory, &tags->tagKeywords, &tags->tagPriority, &tags->tagNotes};
  for (int i = 0; i < 4 && i < columns; ++i)
    *fields[i] = text(values, i);
  tags->tagFound = true;
  return 0;
}

int printTextCallback(void* context, int columns, char** values, char** /*names*/) {
  static constexpr const char* kLabels[] = {
      "ID: ", "\nDATE: ", "\nFROM: ", "\nTO: ", "\nSUBJECT: ", "\nMAILBOX: ", "\n\n"};
  auto* rowText = static_cast<QString*>(context);
  rowText->clear();
  for (int i = 0; i < 7; ++i) {
    *rowText += QLatin1String(kLabels[i]);
    if (i < columns && values[i] != nullptr)
      *rowText += text(values, i);
  }
  return 0;
}

}  // namespace quillery::archive
