#include "ChosenMessages.h"

#include <sqlite3.h>

#include <QVariant>

#include "archive/Archive.h"

namespace quillery::test {
namespace {

// Runs an INSERT with its values bound, so every text arrives exactly as written here.
QString insertRow(sqlite3* db, const char* sql, const QVariantList& values) {
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(db, sql, -1, &statement, nullptr) != SQLITE_OK)
    return QString::fromUtf8(sqlite3_errmsg(db));
  for (int i = 0; i < values.size(); ++i) {
    if (values[i].typeId() == QMetaType::Int) {
      sqlite3_bind_int(statement, i + 1, values[i].toInt());
    } else {
      const QByteArray text = values[i].toString().toUtf8();
      sqlite3_bind_text(statement, i + 1, text.constData(), int(text.size()), SQLITE_TRANSIENT);
    }
  }
  const int code = sqlite3_step(statement);
  sqlite3_finalize(statement);
  return code == SQLITE_DONE ? QString() : QString::fromUtf8(sqlite3_errmsg(db));
}

constexpr char kEmail[] =
    "INSERT INTO email (id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld,numAttach) "
    "VALUES(?,?,?,?,?,?,?,?,?)";
constexpr char kAttachment[] =
    "INSERT INTO attachments (id,type_fld,filename_fld,encode_fld,attach_fld) VALUES(?,?,?,?,?)";
constexpr char kSource[] = "INSERT INTO origemail (id,orig_fld) VALUES(?,?)";
constexpr char kTags[] =
    "INSERT INTO tags (id,cat_fld,key_fld,priority_fld,notes_fld) VALUES(?,?,?,?,?)";

QString plistTrailer() {
  return QStringLiteral(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple "
      "Computer//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
      "<plist version=\"1.0\"><dict><key>flags</key><integer>8590195713</integer></dict>"
      "</plist>\n");
}

}  // namespace

QString ChosenMessages::insert(archive::Archive& archive) {
  sqlite3* db = archive.archiveConnection;
  const QString twoBackslashes = QStringLiteral("\\\\");
  const struct Row {
    const char* sql;
    QVariantList values;
  } rows[] = {
      // A raw source without its own "From " line, non-ASCII and a plist trailer; tagged.
      {kEmail,
       {1, QStringLiteral("Ann Ö'Hara <ann@example.com>"), "Bob <bob@example.com>",
        "Grüße, \"quoted\" and C:" + twoBackslashes + "temp", "2007-01-08 14:03:09", "INBOX",
        "ann@example.com", "Hello Bob,\ngrüße from C:" + twoBackslashes + "temp\n", 0}},
      {kSource,
       {1,
        "Return-Path: <ann@example.com>\nFrom: Ann =?UTF-8?Q?=C3=96'Hara?= "
        "<ann@example.com>\nTo: Bob <bob@example.com>\nSubject: =?UTF-8?Q?Gr=C3=BC=C3=9Fe?= "
        "\"quoted\"\nDate: Mon, 8 Jan 2007 14:03:09 +0000\n\nHello Bob,\ngrüße — 😀 from C:" +
            twoBackslashes + "temp\n" + plistTrailer()}},
      {kTags, {1, "Work", "a 'quoted' key", 2, "note with " + twoBackslashes + " and \"dq\""}},
      // A raw source that is its own separator, with a "From " line in its body.
      {kEmail,
       {2, "carl@example.com", "dev@lists.example.org", "Release notes", "2007-01-09 08:00:00",
        "Lists/Dev", "carl@example.com", "Notes follow.\nFrom the top, please.\n", 0}},
      {kSource,
       {2, QStringLiteral("From carl@example.com Tue Jan  9 08:00:00 2007\nFrom: "
                          "carl@example.com\nSubject: Release notes\n\nNotes follow.\nFrom the "
                          "top, please.\n")}},
      // Rebuilt: a tab in the subject, CR LF line ends, a backslash in the sender; a tags row
      // with a priority alone.
      {kEmail,
       {3, "Dee " + twoBackslashes + " Backslash <dee@example.com>", "ann@example.com", "Tab\there",
        "2007-01-10 09:15:00", "Sent", "dee@example.com", "line one\r\nline two\r\nline three", 0}},
      {kTags, {3, "", "", 1, ""}},
      // Rebuilt with two plain text attachments: multipart/alternative.
      {kEmail,
       {4, "fay@example.com", "ann@example.com", "Two texts", "2007-01-11 10:00:00", "INBOX",
        "fay@example.com", "See attached.\n\nATTACHMENTS:\nnotes.txt\npage.html\n", 2}},
      {kAttachment,
       {4, "text/plain", "notes.txt", "0",
        "  plain text with 'quote' and " + twoBackslashes + "\n\n"}},
      {kAttachment, {4, "TEXT/HTML", "page.html", "0", "<p>Hi</p>\n"}},
      // Rebuilt, only the attachment list as body, four attachments: multipart/mixed; a tags
      // row whose values are all empty.
      {kEmail,
       {5, "Eve \"Quote\" <eve@example.com>", "ann@example.com", "Ünïcödé 😀 subject",
        "2007-02-28 23:59:59", "INBOX", "eve@example.com",
        "ATTACHMENTS:\nphoto.jpg\nblob.bin\ntable.csv\nodd.pdf\n", 4}},
      {kAttachment, {5, "image/jpeg", "photo.jpg", "1", "/9j/4AAQ\nSkZJRg==\n"}},
      {kAttachment, {5, "application/octet-stream", "blob.bin", "0", "raw bytes"}},
      {kAttachment, {5, "text/csv", "table \"v2\".csv", "0", "a,b\n1,2\n"}},
      {kAttachment, {5, "application/pdf", "odd.pdf", "1", "JVBER'i0x" + twoBackslashes}},
      {kTags, {5, "", "", "", ""}},
      // Rebuilt with a date that does not parse.
      {kEmail,
       {6, "gus@example.com", "ann@example.com", "No date", "not a date", "INBOX",
        "gus@example.com", "Body of six.", 0}},
      // Listed, then gone from the archive before the export.
      {kEmail,
       {7, "hal@example.com", "ann@example.com", "Gone", "2007-03-01 00:00:00", "INBOX",
        "hal@example.com", "Body of seven.", 0}},
  };
  archive.exec(QStringLiteral("BEGIN TRANSACTION"));
  for (const Row& row : rows) {
    const QString error = insertRow(db, row.sql, row.values);
    if (!error.isEmpty()) {
      archive.exec(QStringLiteral("ROLLBACK TRANSACTION"));
      return error;
    }
  }
  return archive.exec(QStringLiteral("COMMIT TRANSACTION")).error;
}

QString ChosenMessages::removeLastEmailRow(archive::Archive& archive) {
  return archive.exec(QStringLiteral("DELETE FROM email WHERE id=7")).error;
}

}  // namespace quillery::test
