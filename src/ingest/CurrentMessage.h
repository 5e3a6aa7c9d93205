#pragma once

#include <QString>

#include "archive/Records.h"

namespace quillery::ingest {

// The message being read from the record stream and stored. Its fields live for the whole
// run and are overwritten field by field; only the tag fields are cleared per record. The
// email and tag fields are the ones the archive's row callbacks fill, so the storing step
// can read an earlier copy's tags straight into them.
struct CurrentMessage : archive::EmailRecord, archive::TagRecord {
  QString storeBody;
  QString attachType;
  QString attachFilename;
  QString attachEncoding;
  QString attachBlob;
  bool messageStored = false;
  int lastStoredId = 0;
};

}  // namespace quillery::ingest
