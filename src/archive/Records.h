#pragma once

#include <QString>
#include <QStringList>

#include "archive/IdList.h"

namespace quillery::archive {

// The fields of one email row, as emailRecordCallback fills them and the storing step reads
// them. The record reader's current message carries the same fields under the same names.
struct EmailRecord {
  QString recDate;
  QString recFrom;
  QString recTo;
  QString recSubject;
  QString recBody;
  QString recMailbox;
  QString recMailto;
  int recNumAttach = 0;
};

// The fields of one tags row, as tagRecordCallback fills them. Callers set the four texts to ""
// and tagFound to false before the query; a clear tagFound afterwards means no tags row.
struct TagRecord {
  QString tagCategory;
  QString tagKeywords;
  QString tagPriority;
  QString tagNotes;
  bool tagFound = false;

  // What a caller does before the query: the four texts "" and tagFound false.
  void clearTags() { *this = TagRecord(); }
};

// The ids idListCallback collects. Callers empty the list and zero the count first.
struct IdListState {
  IdList idList;
  int idCount = 0;
};

}  // namespace quillery::archive
