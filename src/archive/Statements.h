#pragma once

#include <QLatin1String>
#include <QString>
#include <QStringView>

namespace quillery::archive {

// Statement texts that several features run as they stand.

// The seven columns that a result list row is made of, in the order the list's row callback
// reads them (id, date, from, to, subject, mailbox, numAttach); a caller appends its own
// condition and order, or nothing to list the whole archive.
inline constexpr char kListColumnsStatement[] =
    "SELECT id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE "
    "mailbox END),numAttach FROM email";

// The list statement with a condition and order of the caller's ("" lists all, unordered).
inline QString listStatement(QStringView rest) {
  return QLatin1String(kListColumnsStatement) + rest.toString();
}
// Every message of the archive in the order they were stored.
inline QString listAllStatement() {
  return listStatement(u" ORDER BY id");
}

// One message's fields in the order emailRecordCallback reads them, up to the table, which the
// caller appends with its condition (the merge reads the attached file's table).
#define QUILLERY_EMAIL_RECORD_COLUMNS                                                         \
  "SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE " \
  "mailbox END),mailto,numAttach FROM "
inline constexpr char kEmailRecordColumns[] = QUILLERY_EMAIL_RECORD_COLUMNS;
// One message's fields in the order emailRecordCallback reads them; "%1" is the id.
inline constexpr char kEmailRecordStatement[] = QUILLERY_EMAIL_RECORD_COLUMNS "email WHERE id=%1";
#undef QUILLERY_EMAIL_RECORD_COLUMNS

// A message's tags in the order tagRecordCallback reads them, up to the table.
inline constexpr char kTagRecordColumns[] = "SELECT cat_fld,key_fld,priority_fld,notes_fld FROM ";

// The inserts that write a message's rows, from the table name to "VALUES(": the caller puts
// "INSERT INTO " and the schema ("mergee." for an attached file) before them (insertInto)
// and the values after. kCopiedEmailColumns is the order in which a message is copied from
// one archive to another; storing writes its own order.
inline constexpr char kCopiedEmailColumns[] =
    "email (id,date_fld,from_fld,to_fld,subj_fld,body_fld,mailto,mailbox,numAttach) VALUES(";
inline constexpr char kTagsColumns[] = "tags (id,cat_fld,key_fld,priority_fld,notes_fld) VALUES(";
inline constexpr char kOrigemailColumns[] = "origemail (id,orig_fld) VALUES(";
inline constexpr char kAttachmentsColumns[] =
    "attachments (id,type_fld,filename_fld,encode_fld,attach_fld) VALUES(";

// "INSERT INTO " + schema + columns.
inline QString insertInto(QStringView schema, const char* columns) {
  return QLatin1String("INSERT INTO ") + schema.toString() + QLatin1String(columns);
}

// One message as the text block that printTextCallback makes of it; "%1" is the id.
inline constexpr char kPrintTextStatement[] =
    "SELECT id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE mailbox "
    "END),body_fld FROM email WHERE id=%1";

// One message's tags row in the order tagRecordCallback reads them; "%1" is the id.
inline constexpr char kTagRecordStatement[] =
    "SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags WHERE id=%1";

}  // namespace quillery::archive
