#include "export/SqlDumpExporter.h"

#include <QFileInfo>

#include "archive/Archive.h"
#include "export/ExportSession.h"
#include "export/MySqlQuoting.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/Emailrow.h"
#include "text/LeadingInt.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

// "'" + the text + "'", quoted by one of the two rules.
void appendLiteral(QString& out, QStringView text, bool escapeBackslashes) {
  out += QLatin1Char('\'');
  if (escapeBackslashes)
    MySqlQuoting::appendEscaped(out, text);
  else
    MySqlQuoting::appendQuotesDoubled(out, text);
  out += QLatin1Char('\'');
}

}  // namespace

QString SqlDumpExporter::databaseName(const QString& path) {
  return QFileInfo(path).fileName().remove(QStringLiteral(".sql"));
}

QString SqlDumpExporter::scriptHead(const QString& database) {
  return QStringLiteral("CREATE DATABASE IF NOT EXISTS ") + database + QStringLiteral(";\nUSE ") +
         database +
         QStringLiteral(
             ";\nCREATE TABLE IF NOT EXISTS email (id INTEGER PRIMARY KEY,from_fld varchar(127) "
             "NOT NULL,to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld "
             "datetime NOT NULL,mailbox varchar(127) NOT NULL,mailto varchar(127) NOT "
             "NULL,body_fld mediumtext NOT NULL,numAttach INTEGER NOT NULL DEFAULT 0);\n"
             "CREATE TABLE IF NOT EXISTS attachments (id INT,type_fld varchar(127) NOT NULL,base64 "
             "INT,filename_fld varchar(127) NOT NULL,attach_fld LONGBLOB NOT NULL);\n"
             "CREATE TABLE IF NOT EXISTS origemail (id INTEGER PRIMARY KEY,orig_fld LONGBLOB NOT "
             "NULL);\n"
             "CREATE TABLE IF NOT EXISTS tags (id INTEGER PRIMARY KEY,cat_fld varchar(127) NOT "
             "NULL,key_fld varchar(127) NOT NULL,priority_fld INT DEFAULT 0,notes_fld mediumtext "
             "NOT NULL);\n"
             "SET CHARACTER SET utf8;\n");
}

ExportOutcome SqlDumpExporter::exportSQL(const AskFirstId& askFirstId, bool origState) {
  const QString path = ExportSession::chooseExportPath(
      ports_.dialogs, QStringLiteral("Enter Database Name"), QStringLiteral("sql"), exportPath_,
      QStringLiteral("Database Name:"));
  if (path.isEmpty())
    return ExportOutcome::Cancelled;
  const std::optional<int> firstId = askFirstId();
  if (!firstId)
    return ExportOutcome::Cancelled;
  return writeScript(path, *firstId, origState);
}

ExportOutcome SqlDumpExporter::writeScript(const QString& path, int firstId, bool origState) {
  exportPath_ = path;
  ExportSession session(ports_);
  return session.writeList(path, scriptHead(databaseName(path)).toUtf8(),
                           QStringLiteral("SQL file"), [&](int position, ExportWriter& out) {
                             return exportOne(session, position, firstId + position, origState,
                                              out);
                           });
}

ExportSession::Step SqlDumpExporter::exportOne(ExportSession& session, int position, int newId,
                                               bool origState, ExportWriter& out) {
  const int id = session.rowAt(position).emailID();
  archive::ExecResult read = rows_.readEmail(id);
  if (read.ok())
    read = rows_.readTags(id);
  QString raw;
  if (read.ok() && origState) {
    // A failed read of the raw source only leaves the message without one.
    rows_.readRawSource(MessageRows::kQualifiedOrigStatement, id);
    raw = std::move(ports_.archive.sqlResult);
    text::PlistTrailer::stripPlist(raw);
  }
  if (read.ok())
    read = rows_.readAttachments(id);
  if (!read.ok()) {
    session.showSqlError(read);
    return ExportSession::Step::ReadFailed;
  }
  QString script;
  appendEmail(script, newId);
  appendTags(script, newId);
  if (!raw.isEmpty()) {
    script +=
        QStringLiteral("INSERT INTO origemail VALUES(") + QString::number(newId) + QLatin1Char(',');
    appendLiteral(script, raw, true);
    script += QStringLiteral(");\n");
  }
  ports_.progress.doProgressCount(position, 10);
  appendAttachments(script, newId);
  out.write(script.toUtf8());
  return ExportSession::Step::Written;
}

void SqlDumpExporter::appendEmail(QString& script, int newId) const {
  const archive::EmailRecord& record = rows_.record;
  QString body = record.recBody;
  MessageRows::cutAttachmentList(body);
  script += QStringLiteral("INSERT INTO email VALUES(") + QString::number(newId) + QLatin1Char(',');
  appendLiteral(script, record.recFrom, false);
  script += QLatin1Char(',');
  appendLiteral(script, record.recTo, false);
  script += QLatin1Char(',');
  appendLiteral(script, record.recSubject, true);
  script += QStringLiteral(",'") + record.recDate + QStringLiteral("',");
  appendLiteral(script, record.recMailbox, false);
  script += QLatin1Char(',');
  appendLiteral(script, record.recMailto, false);
  script += QLatin1Char(',');
  appendLiteral(script, body, true);
  script += QLatin1Char(',') + QString::number(record.recNumAttach) + QStringLiteral(");\n");
}

void SqlDumpExporter::appendTags(QString& script, int newId) const {
  const archive::TagRecord& tags = rows_.tags;
  if (tags.tagCategory.isEmpty() && tags.tagKeywords.isEmpty() && tags.tagPriority.isEmpty() &&
      tags.tagNotes.isEmpty())
    return;
  script += QStringLiteral("INSERT INTO tags VALUES(") + QString::number(newId) + QLatin1Char(',');
  appendLiteral(script, tags.tagCategory, true);
  script += QLatin1Char(',');
  appendLiteral(script, tags.tagKeywords, true);
  script +=
      QLatin1Char(',') + QString::number(text::leadingInt(tags.tagPriority)) + QLatin1Char(',');
  appendLiteral(script, tags.tagNotes, true);
  script += QStringLiteral(");\n");
}

void SqlDumpExporter::appendAttachments(QString& script, int newId) const {
  const QStringList& values = ports_.archive.columnValues;
  for (qsizetype k = 0; k + 3 < values.size(); k += 4) {
    const QString& type = values[k];
    QString fileName;
    MySqlQuoting::appendEscaped(fileName, values[k + 1]);
    const int flag = text::leadingInt(values[k + 2]);
    const QStringView data = QStringView(values[k + 3]).trimmed();
    script += QStringLiteral("INSERT INTO attachments VALUES(") + QString::number(newId) +
              QStringLiteral(",'") + type + QStringLiteral("',") + QString::number(flag) +
              QStringLiteral(",'") + fileName + QStringLiteral("','");
    // Data with a quote or a backslash is escaped and written without the wrapper, though
    // its flag was written as stored.
    if (flag != 0 && !data.contains(u'\'') && !data.contains(u'\\')) {
      script += QStringLiteral("MIME-Version: 1.0\nContent-Type: ") + type +
                QStringLiteral("; name=\"") + fileName +
                QStringLiteral("\"\nContent-Transfer-Encoding: Base64\n\n");
      script += data;
    } else {
      MySqlQuoting::appendEscaped(script, data);
    }
    script += QStringLiteral("');\n");
  }
}

}  // namespace quillery::exporting
