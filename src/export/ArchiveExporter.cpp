#include "export/ArchiveExporter.h"

#include <sqlite3.h>

#include <QFile>

#include "archive/Archive.h"
#include "export/ExportSession.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "text/LeadingInt.h"
#include "text/SqlEscape.h"

namespace quillery::exporting {
namespace {

using text::SqlEscape;

const char* const kCreateStatements[] = {
    "CREATE TABLE email (id INTEGER PRIMARY KEY,from_fld varchar(127) NOT NULL,to_fld "
    "varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime NOT NULL,mailbox "
    "varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext NOT NULL,numAttach "
    "INTEGER NOT NULL DEFAULT 0);",
    archive::Archive::kCreateAttachments, archive::Archive::kCreateOrigemail,
    archive::Archive::kCreateTags};

// ,"<text escaped>"
void appendQuoted(QString& sql, QStringView text, bool escape = true) {
  sql += QStringLiteral(",\"");
  if (escape)
    SqlEscape::appendEscaped(sql, text);
  else
    sql += text;
  sql += QLatin1Char('"');
}

}  // namespace

ExportOutcome ArchiveExporter::exportDb(bool origState) {
  const QString path = ExportSession::chooseExportPath(
      ports_.dialogs, QStringLiteral("Save Exported Quillery Database File"), {}, exportPath_);
  if (path.isEmpty())
    return ExportOutcome::Cancelled;
  return writeArchive(path, origState);
}

ExportOutcome ArchiveExporter::writeArchive(const QString& path, bool origState) {
  exportPath_ = path;
  ExportSession session(ports_);
  if (session.refuseArchiveFile(path))
    return ExportOutcome::Failed;
  session.openProgress(QStringLiteral("Exporting..."));
  if (!createFile(session, path) || !attach(session, path))
    return ExportOutcome::Failed;
  session.beginTransaction();
  int copied = 0;
  for (const QString& idText : std::as_const(ports_.archive.idList)) {
    if (!copyOne(session, text::leadingInt(idText), copied, origState))
      return ExportOutcome::Failed;
  }
  // The copy lives in this transaction: unlike a reading export's, its failure (a full disk)
  // means nothing was exported.
  const archive::ExecResult committed = ports_.archive.exec(QStringLiteral("COMMIT TRANSACTION"));
  if (!committed.ok()) {
    endFailedCopy(session, committed);
    return ExportOutcome::Failed;
  }
  ports_.archive.exec(QStringLiteral("DETACH mergee"));
  session.closeProgress();
  session.showExported(QStringLiteral("Quillery database file"), path);
  return ExportOutcome::Done;
}

bool ArchiveExporter::createFile(ExportSession& session, const QString& path) {
  QFile::remove(path);
  // A journal left beside an earlier file of that name would be played into the new one, and
  // its search index could pass for the new file's: a fresh file's fingerprint is much alike.
  QFile::remove(path + QStringLiteral("-journal"));
  ports_.archive.searchIndex().forget(path);
  sqlite3* db = nullptr;
  if (sqlite3_open(path.toUtf8().constData(), &db) != SQLITE_OK) {
    const QString error = QString::fromUtf8(db ? sqlite3_errmsg(db) : "out of memory");
    sqlite3_close(db);
    ports_.dialogs.critical(QString(), error);  // the panel stays up, as it always has
    return false;
  }
  ports_.archive.setFileCreator(path);
  for (const char* create : kCreateStatements) {
    char* error = nullptr;
    if (sqlite3_exec(db, create, nullptr, nullptr, &error) == SQLITE_OK)
      continue;
    const QString message = QString::fromUtf8(error ? error : sqlite3_errmsg(db));
    sqlite3_free(error);
    sqlite3_close(db);
    session.closeProgress();
    const bool first = create == kCreateStatements[0];
    ports_.dialogs.critical(QString(), first ? message : QStringLiteral("SQL error: ") + message);
    return false;
  }
  sqlite3_close(db);
  return true;
}

bool ArchiveExporter::attach(ExportSession& session, const QString& path) {
  const archive::ExecResult attached =
      ports_.archive.exec(QStringLiteral("ATTACH \"") + path + QStringLiteral("\" as mergee"));
  if (attached.ok())
    return true;
  session.closeProgress();
  if (attached.code == SQLITE_CORRUPT || attached.code == SQLITE_NOTADB)
    ports_.dialogs.critical(QStringLiteral("Export Failed"),
                            path + QStringLiteral(" is not a valid database file."));
  else
    ports_.dialogs.critical(QString(), attached.error);
  return false;
}

bool ArchiveExporter::copyOne(ExportSession& session, int id, int& copied, bool origState) {
  archive::ExecResult result = copyEmail(id);
  const int newId = int(ports_.archive.lastInsertRowId());
  if (result.ok())
    result = copyTags(id, newId);
  if (result.ok() && origState)
    result = copySource(id, newId);
  if (result.ok()) {
    ports_.progress.doProgressCount(++copied, 10);
    result = copyAttachments(id, newId);
  }
  if (result.ok())
    return true;
  endFailedCopy(session, result);
  return false;
}

archive::ExecResult ArchiveExporter::copyEmail(int id) {
  const archive::ExecResult read = rows_.readEmail(id);
  if (!read.ok())
    return read;
  const archive::EmailRecord& r = rows_.record;
  QString sql = QStringLiteral(
      "INSERT INTO mergee.email (id,date_fld,from_fld,to_fld,subj_fld,body_fld,mailto,mailbox,"
      "numAttach) VALUES(NULL");
  appendQuoted(sql, r.recDate, false);
  for (const QString* value :
       {&r.recFrom, &r.recTo, &r.recSubject, &r.recBody, &r.recMailto, &r.recMailbox})
    appendQuoted(sql, *value);
  sql += QLatin1Char(',') + QString::number(r.recNumAttach) + QLatin1Char(')');
  return ports_.archive.exec(sql);
}

archive::ExecResult ArchiveExporter::copyTags(int id, int newId) {
  const archive::ExecResult read = rows_.readTags(id);
  const archive::TagRecord& t = rows_.tags;
  if (!read.ok() || (t.tagCategory.isEmpty() && t.tagKeywords.isEmpty() &&
                     t.tagPriority.isEmpty() && t.tagNotes.isEmpty()))
    return read;
  QString sql = QStringLiteral(
                    "INSERT INTO mergee.tags (id,cat_fld,key_fld,priority_fld,notes_fld) VALUES(") +
                QString::number(newId);
  appendQuoted(sql, t.tagCategory);
  appendQuoted(sql, t.tagKeywords);
  sql += QLatin1Char(',') + QString::number(text::leadingInt(t.tagPriority));
  appendQuoted(sql, t.tagNotes);
  sql += QLatin1Char(')');
  return ports_.archive.exec(sql);
}

archive::ExecResult ArchiveExporter::copySource(int id, int newId) {
  // A failed read leaves the text empty, and the copy gets an empty source, as a message
  // without one does.
  rows_.readRawSource(MessageRows::kOrigStatement, id);
  const QString& raw = ports_.archive.sqlResult;
  if (raw == QLatin1String("0"))  // a NULL source
    return {};
  QString sql =
      QStringLiteral("INSERT INTO mergee.origemail (id,orig_fld) VALUES(") + QString::number(newId);
  appendQuoted(sql, raw);
  sql += QLatin1Char(')');
  return ports_.archive.exec(sql);
}

archive::ExecResult ArchiveExporter::copyAttachments(int id, int newId) {
  const archive::ExecResult read = rows_.readAttachments(id);
  if (!read.ok())
    return read;
  const QStringList& values = ports_.archive.columnValues;
  const QString head = QStringLiteral(
                           "INSERT INTO mergee.attachments (id,type_fld,filename_fld,encode_fld,"
                           "attach_fld) VALUES(") +
                       QString::number(newId);
  for (qsizetype k = 0; k + 3 < values.size(); k += 4) {
    QString sql = head;
    appendQuoted(sql, values[k], false);
    appendQuoted(sql, values[k + 1]);
    appendQuoted(sql, values[k + 2], false);
    appendQuoted(sql, values[k + 3]);
    sql += QLatin1Char(')');
    const archive::ExecResult inserted = ports_.archive.exec(sql);
    if (!inserted.ok())
      return inserted;
  }
  return {};
}

void ArchiveExporter::endFailedCopy(ExportSession& session, const archive::ExecResult& result) {
  session.abandonTransaction();
  session.closeProgress();
  session.showSqlError(result);
  ports_.archive.exec(QStringLiteral("DETACH mergee"));
  // A full disk can stop SQLite half way through undoing the copy; the journal it leaves
  // is played back by the next connection, so the file is settled now rather than later.
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(exportPath_.toUtf8().constData(), &db, SQLITE_OPEN_READWRITE, nullptr) ==
      SQLITE_OK)
    sqlite3_exec(db, "SELECT count(*) FROM email", nullptr, nullptr, nullptr);
  sqlite3_close(db);
}

}  // namespace quillery::exporting
