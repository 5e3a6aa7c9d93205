#include "archive/maintenance/MergeMessageCopy.h"

#include <algorithm>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "archive/Statements.h"
#include "archive/maintenance/ErrorLines.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"
#include "text/LeadingInt.h"
#include "text/SqlEscape.h"

namespace quillery::maintenance {
namespace {

// Appends ,"text" escaped as every text in a statement is: backslashes doubled, then double
// quotes. SQLite keeps the doubled backslashes, so a backslash arrives doubled in the copy.
void appendQuoted(QString& statement, QStringView value) {
  statement.append(QLatin1String(",\""));
  text::SqlEscape::appendEscaped(statement, value);
  statement.append(QLatin1Char('"'));
}

QString sourceStatement(int mergeId) {
  return QStringLiteral("SELECT orig_fld FROM mergee.origemail WHERE mergee.origemail.id = %1")
      .arg(mergeId);
}

}  // namespace

MergeMessageCopy::MergeMessageCopy(archive::Archive& archive, search::ResultList& list,
                                   platform::Dialogs& dialogs, platform::Progress& progress)
    : archive_(archive), list_(list), dialogs_(dialogs), progress_(progress) {}

MergeMessageCopy::Outcome MergeMessageCopy::copy(const QString& mergeId, bool mergeHasSources) {
  if (!readMessage(mergeId))
    return Outcome::Skipped;
  const int existingId = findDuplicate();
  if (existingId < 0)
    return Outcome::Skipped;
  const int id = text::leadingInt(mergeId);
  if (existingId > 0) {
    // Without sources in the merge file there is nothing a duplicate could gain.
    if (!mergeHasSources)
      return Outcome::Skipped;
    return mergeDuplicate(id, existingId);
  }
  return copyNew(id, readTags(id), mergeHasSources);
}

bool MergeMessageCopy::readMessage(const QString& mergeId) {
  record_ = {};
  const archive::ExecResult read =
      archive_.exec(QLatin1String(archive::kEmailRecordColumns) +
                        QStringLiteral("mergee.email WHERE mergee.email.id = \"%1\"").arg(mergeId),
                    archive::emailRecordCallback, &record_);
  // A message that cannot be read is not copied with another one's fields.
  reportOnStandardError(read);
  return read.ok();
}

int MergeMessageCopy::findDuplicate() {
  // The texts go in as they were read: a double quote in them makes the test fail.
  archive_.sqlResult.clear();
  const archive::ExecResult found = archive_.exec(
      QStringLiteral("SELECT id FROM email WHERE date_fld=\"%1\" AND to_fld=\"%2\" AND "
                     "from_fld=\"%3\"")
          .arg(record_.recDate, record_.recTo, record_.recFrom),
      archive::singleValueCallback, &archive_);
  if (!found.ok()) {
    progress_.close();
    dialogs_.critical(QString(), QStringLiteral("SQL Error: ") + found.error);
    return -1;
  }
  return std::max(0, text::leadingInt(archive_.sqlResult));
}

MergeMessageCopy::Outcome MergeMessageCopy::mergeDuplicate(int mergeId, int existingId) {
  archive_.sqlResult.clear();
  archive_.exec(QStringLiteral("SELECT id FROM origemail WHERE origemail.id = %1").arg(existingId),
                archive::singleValueCallback, &archive_);
  if (archive_.sqlResult.isEmpty())
    copySource(mergeId, existingId);
  return Outcome::Duplicate;
}

bool MergeMessageCopy::readTags(int mergeId) {
  tags_.clearTags();
  archive_.sqlResult = QStringLiteral("0");
  archive_.exec(QStringLiteral("SELECT id FROM mergee.tags WHERE id = %1").arg(mergeId),
                archive::singleValueCallback, &archive_);
  if (text::leadingInt(archive_.sqlResult) == 0)
    return false;
  archive_.exec(QLatin1String(archive::kTagRecordColumns) +
                    QStringLiteral("mergee.tags WHERE id=%1").arg(mergeId),
                archive::tagRecordCallback, &tags_);
  return true;
}

MergeMessageCopy::Outcome MergeMessageCopy::copyNew(int mergeId, bool hasTags,
                                                    bool mergeHasSources) {
  if (!insertEmail())
    return Outcome::Skipped;
  const int newId = int(archive_.lastInsertRowId());
  if (hasTags && !insertTags(newId))
    return Outcome::Skipped;
  if (mergeHasSources && !copySource(mergeId, newId))
    return Outcome::Skipped;
  if (!readAttachments(mergeId))
    return Outcome::Skipped;
  QString date = std::move(record_.recDate);
  if (hasTags)
    date += QLatin1Char('*');
  list_.appendRow(search::Emailrow(newId, archive_.columnRowCount, std::move(date),
                                   std::move(record_.recFrom), std::move(record_.recTo),
                                   std::move(record_.recSubject), std::move(record_.recMailbox)));
  insertAttachments(newId);
  return Outcome::Copied;
}

bool MergeMessageCopy::insertEmail() {
  const archive::EmailRecord& r = record_;
  QString statement = archive::insertInto(u"", archive::kCopiedEmailColumns);
  statement.reserve(statement.size() + r.recBody.size() + r.recSubject.size() + 1024);
  // The date goes in as it was read.
  statement += QLatin1String("NULL,\"") + r.recDate + QLatin1Char('"');
  for (const QString* value :
       {&r.recFrom, &r.recTo, &r.recSubject, &r.recBody, &r.recMailto, &r.recMailbox})
    appendQuoted(statement, *value);
  statement += QLatin1Char(',') + QString::number(r.recNumAttach) + QLatin1Char(')');
  return write(statement);
}

bool MergeMessageCopy::insertTags(int newId) {
  const archive::TagRecord& t = tags_;
  if (t.tagCategory.isEmpty() && t.tagKeywords.isEmpty() && t.tagPriority.isEmpty() &&
      t.tagNotes.isEmpty())
    return true;
  QString statement = archive::insertInto(u"", archive::kTagsColumns) + QString::number(newId);
  appendQuoted(statement, t.tagCategory);
  appendQuoted(statement, t.tagKeywords);
  statement += QLatin1Char(',') + QString::number(text::leadingInt(t.tagPriority));
  appendQuoted(statement, t.tagNotes);
  statement += QLatin1Char(')');
  return write(statement);
}

bool MergeMessageCopy::copySource(int mergeId, int targetId) {
  archive_.sqlResult = QStringLiteral("0");
  archive_.exec(sourceStatement(mergeId), archive::singleValueCallback, &archive_);
  if (archive_.sqlResult.size() <= 2)
    return true;
  QString statement =
      archive::insertInto(u"", archive::kOrigemailColumns) + QString::number(targetId);
  appendQuoted(statement, archive_.sqlResult);
  statement += QLatin1Char(')');
  // The source is the longest text of most messages: it is not kept beyond its copy.
  archive_.sqlResult.clear();
  return write(statement);
}

bool MergeMessageCopy::readAttachments(int mergeId) {
  archive_.columnValues.clear();
  archive_.columnRowCount = 0;
  const archive::ExecResult read = archive_.exec(
      QStringLiteral("SELECT type_fld,filename_fld,encode_fld,attach_fld FROM mergee.attachments "
                     "WHERE mergee.attachments.id=%1")
          .arg(mergeId),
      archive::columnListCallback, &archive_);
  if (!read.ok())
    fail(read);
  return read.ok();
}

void MergeMessageCopy::insertAttachments(int newId) {
  const QStringList& values = archive_.columnValues;
  for (qsizetype row = 0; row + 3 < values.size(); row += 4) {
    QString fileName = values.at(row + 1);
    text::SqlEscape::removeNewlines(fileName);
    // The type and the encoding flag go in as they were read.
    QString statement = archive::insertInto(u"", archive::kAttachmentsColumns) +
                        QString::number(newId) + QLatin1String(",\"") + values.at(row) +
                        QLatin1Char('"');
    statement.reserve(statement.size() + values.at(row + 3).size() + fileName.size() + 64);
    appendQuoted(statement, fileName);
    statement += QLatin1String(",\"") + values.at(row + 2) + QLatin1Char('"');
    appendQuoted(statement, values.at(row + 3));
    statement += QLatin1Char(')');
    write(statement);
  }
  archive_.columnValues.clear();
}

bool MergeMessageCopy::write(const QString& statement) {
  const archive::ExecResult result = archive_.exec(statement);
  if (!result.ok())
    fail(result);
  return result.ok();
}

void MergeMessageCopy::fail(const archive::ExecResult& result) {
  progress_.close();
  dialogs_.critical(QString(), QStringLiteral("SQL error: ") + result.error);
}

}  // namespace quillery::maintenance
