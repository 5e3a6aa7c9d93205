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

// One message's fields in the order emailRecordCallback reads them; "%1" is the id.
inline constexpr char kEmailRecordStatement[] =
    "SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE "
    "mailbox END),mailto,numAttach FROM email WHERE id=%1";

// One message's tags row in the order tagRecordCallback reads them; "%1" is the id.
inline constexpr char kTagRecordStatement[] =
    "SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags WHERE id=%1";

}  // namespace quillery::archive
