#pragma once

#include <QString>

#include "archive/Records.h"

namespace quillery::archive {
class Archive;
struct ExecResult;
}  // namespace quillery::archive

namespace quillery::exporting {

// The reads of one message that the structured exports make through the shared callbacks,
// each resetting what its callback fills first. Each returns SQLite's answer; the values
// stay in the fields below and in the archive's sqlResult and columnValues until the next
// read of the same kind.
class MessageRows {
 public:
  // The two texts of the raw-source query that the exports use.
  static constexpr char kOrigStatement[] = "SELECT orig_fld FROM origemail WHERE id=%1";
  static constexpr char kQualifiedOrigStatement[] =
      "SELECT orig_fld FROM origemail WHERE origemail.id=%1";

  explicit MessageRows(archive::Archive& archive) : archive_(archive) {}

  // The email row into record (emailRecordCallback). A message without an email row leaves
  // record as the message before left it.
  archive::ExecResult readEmail(int id);
  // The tags row into tags, all four texts "" and tagFound clear first.
  archive::ExecResult readTags(int id);
  // The raw source into the archive's sqlResult, "" first (so "" when there is no row).
  // statement is one of the two texts above.
  archive::ExecResult readRawSource(const char* statement, int id);
  // The attachment rows into the archive's columnValues, four texts per row (type, file
  // name, encoding flag, data) in the order the query returns them; columnRowCount counts
  // them.
  archive::ExecResult readAttachments(int id);

  // Deletes the first "ATTACHMENTS:" of a body and everything after it.
  static void cutAttachmentList(QString& body);

  archive::EmailRecord record;
  archive::TagRecord tags;

 private:
  archive::Archive& archive_;
};

}  // namespace quillery::exporting
