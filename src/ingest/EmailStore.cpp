#include "ingest/EmailStore.h"

#include <sqlite3.h>

#include "archive/RowCallbacks.h"
#include "ingest/StoreLog.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "text/LeadingInt.h"
#include "text/LinePieces.h"
#include "text/SqlEscape.h"

namespace quillery::ingest {
namespace {

// What a NUL character of a text becomes in its statement, which SQLite would read as the
// statement's end.
constexpr QChar kNulStandIn(0xFFFD);

bool isNotADatabase(int code) {
  return code == SQLITE_CORRUPT || code == SQLITE_NOTADB;
}

// "…"%1"" pieces are appended, never formatted with arg(): mail text may hold "%1" itself.
void appendQuoted(QString& statement, const QString& value) {
  statement += QLatin1Char('"');
  statement += value;
  statement += QLatin1Char('"');
}

// A long text (body, raw source, attachment) goes into the statement escaped on the way,
// with no escaped copy of its own.
void appendQuotedEscaped(QString& statement, const QString& value) {
  statement.reserve(statement.size() + value.size() + value.size() / 16 + 8);
  statement += QLatin1Char('"');
  text::SqlEscape::appendEscaped(statement, value);
  statement += QLatin1Char('"');
}

// The source between the raw file's "RAW:" lines (skipped wherever they are) and its
// "ENDOFRAW:" line, each line piece decoded on its own. The kept pieces are decoded in runs
// between the skipped ones, and a piece cut off inside a long line closes its run, so that
// a run decodes exactly as its pieces would one by one, only faster.
QString rawSourceText(QByteArrayView bytes) {
  QString source;
  source.reserve(bytes.size());
  text::LinePieces pieces(bytes);
  QByteArrayView piece;
  const char* runStart = bytes.data();
  const auto closeRun = [&](const char* runEnd) {
    if (runEnd > runStart)
      pieces.appendDecodedRun(source, QByteArrayView(runStart, runEnd));
  };
  while (pieces.next(piece)) {
    const char* pieceEnd = piece.data() + piece.size();
    if (piece.startsWith("ENDOFRAW:")) {
      closeRun(piece.data());
      return source;
    }
    if (piece.startsWith("RAW:")) {
      closeRun(piece.data());
      runStart = pieceEnd;
    } else if (!piece.endsWith('\n')) {
      closeRun(pieceEnd);
      runStart = pieceEnd;
    }
  }
  closeRun(bytes.data() + bytes.size());
  return source;
}

}  // namespace

EmailStore::EmailStore(archive::Archive& archive, CurrentMessage& message,
                       StoreRunCounters& counters, StoreLog& storeLog, platform::Dialogs& dialogs,
                       platform::Progress& progress)
    : archive_(archive),
      message_(message),
      counters_(counters),
      storeLog_(storeLog),
      dialogs_(dialogs),
      progress_(progress) {}

QString EmailStore::duplicateStatement(const QString& date, const QString& to, const QString& from,
                                       const QString& subject) {
  QString statement = QStringLiteral("SELECT id FROM email WHERE date_fld=");
  appendQuoted(statement, date);
  statement += QLatin1String(" AND to_fld=");
  appendQuoted(statement, to);
  statement += QLatin1String(" AND from_fld=");
  appendQuoted(statement, from);
  statement += QLatin1String(" AND subj_fld=");
  appendQuoted(statement, subject);
  return statement;
}

void EmailStore::storeEmail(int numAttach) {
  CurrentMessage& m = message_;
  m.storeBody = std::move(m.storeBody).trimmed();
  archive_.sqlResult.clear();
  // Escaped copies: the message keeps its values as read, so a later call for the same
  // record, or a field carried over to the next record, is escaped once and not again.
  headers_ = {m.recFrom, m.recTo, m.recSubject, m.recMailto, m.recMailbox};
  for (QString* field :
       {&headers_.from, &headers_.to, &headers_.subject, &headers_.mailto, &headers_.mailbox})
    text::SqlEscape::escapeSqlText(*field);

  QString duplicateTest =
      duplicateStatement(m.recDate, headers_.to, headers_.from, headers_.subject);
  const archive::ExecResult found = execute(duplicateTest, archive::singleValueCallback, &archive_);
  if (!found.ok())
    storeLog_.write(QStringLiteral("SQL error: ") + found.error + QLatin1Char('\n'));
  const int duplicate = text::leadingInt(archive_.sqlResult);
  if (duplicate != 0)
    replaceDuplicate(duplicate);

  if (!insertEmail(numAttach))
    return;
  if (!insertTags())
    return;
  if (origState_ && !insertRawSource())
    return;
  m.messageStored = true;
}

void EmailStore::replaceDuplicate(int id) {
  ++counters_.duplicateCount;
  message_.tagFound = false;
  // The tags the user gave the earlier copy replace those of the record.
  const archive::ExecResult tags = archive_.exec(
      QStringLiteral("SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags WHERE id=%1").arg(id),
      archive::tagRecordCallback, static_cast<archive::TagRecord*>(&message_));
  if (!tags.ok())
    dialogs_.critical(QString(), QStringLiteral("SQL error: ") + tags.error);
  const auto logAndGoOn = [this](const archive::ExecResult& result) {
    storeLog_.write(QStringLiteral("SQL error: ") + result.error + QLatin1Char('\n'));
    return true;
  };
  using archive::MessageTable;
  if (message_.tagFound)
    archive_.deleteMessageRows(id, {MessageTable::Tags}, logAndGoOn);
  archive_.deleteMessageRows(
      id, {MessageTable::Attachments, MessageTable::Email, MessageTable::Origemail}, logAndGoOn);
}

bool EmailStore::insertEmail(int numAttach) {
  CurrentMessage& m = message_;
  // A failed insert is tried once more with an empty subject; a message with an empty body
  // has no second attempt.
  bool secondAttempt = !m.storeBody.isEmpty();
  for (;;) {
    QString statement = QStringLiteral(
        "INSERT INTO email (id,date_fld,from_fld,to_fld,subj_fld,mailto,mailbox,body_fld,"
        "numAttach) VALUES(NULL");
    for (const QString* value : {&m.recDate, &headers_.from, &headers_.to, &headers_.subject,
                                 &headers_.mailto, &headers_.mailbox}) {
      statement += QLatin1Char(',');
      appendQuoted(statement, *value);
    }
    // Header values lose their line ends (the mailbox carries one); the body keeps them.
    text::SqlEscape::removeNewlines(statement);
    statement += QLatin1Char(',');
    appendQuotedEscaped(statement, m.storeBody);
    statement += QLatin1Char(',') + QString::number(numAttach) + QLatin1Char(')');

    const archive::ExecResult result = execute(statement);
    if (result.ok()) {
      ++counters_.storedCount;
      m.lastStoredId = int(archive_.lastInsertRowId());
      return true;
    }
    if (isNotADatabase(result.code)) {
      reportCorruptArchive();
      return false;
    }
    if (!secondAttempt)
      return false;  // given up without a word
    logFailure(QStringLiteral("SQL error for this email: ") + messageFields(result.code), result);
    m.recSubject.clear();
    headers_.subject.clear();
    secondAttempt = false;
  }
}

bool EmailStore::insertTags() {
  const CurrentMessage& m = message_;
  if (m.tagCategory.isEmpty() && m.tagKeywords.isEmpty() && m.tagNotes.isEmpty() &&
      m.tagPriority.isEmpty())
    return true;
  // The tag values go in as they are, unescaped.
  QString statement =
      QStringLiteral("INSERT INTO tags (id,cat_fld,key_fld,priority_fld,notes_fld) VALUES(") +
      QString::number(m.lastStoredId) + QLatin1Char(',');
  appendQuoted(statement, m.tagCategory);
  statement += QLatin1Char(',');
  appendQuoted(statement, m.tagKeywords);
  statement +=
      QLatin1Char(',') + QString::number(text::leadingInt(m.tagPriority)) + QLatin1Char(',');
  appendQuoted(statement, m.tagNotes);
  statement += QLatin1Char(')');
  text::SqlEscape::removeNewlines(statement);
  const archive::ExecResult result = execute(statement);
  if (result.ok())
    return true;
  dialogs_.critical(QString(), QStringLiteral("SQL error: ") + result.error);
  return false;
}

void EmailStore::loadRawFile() {
  if (!origState_)
    return;
  rawBytes_ = text::LinePieces::readFile(paths_.rawFile);
  rawLoaded_ = true;
}

void EmailStore::releaseRawFile() {
  rawLoaded_ = false;
  rawBytes_.reset();
}

bool EmailStore::insertRawSource() {
  const std::optional<QByteArray> bytes =
      rawLoaded_ ? rawBytes_ : text::LinePieces::readFile(paths_.rawFile);
  if (!bytes) {
    dialogs_.critical(QString(), QStringLiteral("Couldn't open ") + paths_.rawFile);
    progress_.close();
    progress_.setRunControlsVisible(false, platform::Progress::RunControls::CountAndItem);
    return false;
  }
  QString source = rawSourceText(*bytes);
  QString statement = QStringLiteral("INSERT INTO origemail (id,orig_fld) VALUES(") +
                      QString::number(message_.lastStoredId) + QLatin1Char(',');
  appendQuotedEscaped(statement, source);
  statement += QLatin1Char(')');
  source.clear();

  const archive::ExecResult result = execute(statement);
  if (result.ok())
    return true;
  if (isNotADatabase(result.code)) {
    reportCorruptArchive();
    return false;
  }
  logFailure(
      QStringLiteral("SQL error for raw source of this email: ") + messageFields(result.code),
      result);
  return false;
}

void EmailStore::doAttachment(const QString& attachText) {
  CurrentMessage& m = message_;
  const int encoded = m.attachEncoding.contains(QLatin1String("base64"), Qt::CaseInsensitive);
  QString filename = m.attachFilename;
  text::SqlEscape::escapeSqlText(filename);
  text::SqlEscape::removeNewlines(filename);
  // The type goes in unescaped.
  QString statement =
      QStringLiteral(
          "INSERT INTO attachments (id,type_fld,filename_fld,encode_fld,attach_fld) "
          "VALUES(") +
      QString::number(m.lastStoredId) + QLatin1Char(',');
  appendQuoted(statement, m.attachType);
  statement += QLatin1Char(',');
  appendQuoted(statement, filename);
  statement += QLatin1Char(',') + QString::number(encoded);
  text::SqlEscape::removeNewlines(statement);
  statement += QLatin1Char(',');
  appendQuotedEscaped(statement, attachText);
  statement += QLatin1Char(')');

  const archive::ExecResult result = execute(statement);
  if (result.ok())
    return;
  logFailure(QStringLiteral("SQL error for attachment ") + filename +
                 QStringLiteral(" in this email: ") + messageFields(result.code),
             result);
}

void EmailStore::updateNumAttach(int numAttach) {
  const archive::ExecResult result =
      archive_.exec(QStringLiteral("UPDATE email SET numAttach=%1 WHERE id=%2")
                        .arg(numAttach)
                        .arg(message_.lastStoredId));
  if (!result.ok())
    logFailure(QStringLiteral("SQL error updating number of attachments"), result);
}

archive::ExecResult EmailStore::execute(QString& statement, RowCallback callback, void* context) {
  // One scan of the statement; a text without NUL (nearly every one) is left as it is.
  if (statement.contains(QChar(0)))
    statement.replace(QChar(0), kNulStandIn);
  return archive_.exec(statement, callback, context);
}

QString EmailStore::messageFields(int code) const {
  const CurrentMessage& m = message_;
  const QString separator = QStringLiteral("::");
  return QString::number(code) + QStringLiteral("  ") + m.recDate + separator + headers_.from +
         separator + headers_.to + separator + headers_.subject + separator + headers_.mailbox;
}

void EmailStore::logFailure(QString line, const archive::ExecResult& result) {
  // The reason has a line of its own, under the message line (whose mailbox brings its own
  // line end), so every log line keeps the beginning it always had.
  if (!line.endsWith(QLatin1Char('\n')))
    line += QLatin1Char('\n');
  line += QStringLiteral("SQLite: ") + result.error + QLatin1Char('\n');
  storeLog_.write(line);
  ++counters_.sqlErrorCount;
}

void EmailStore::reportCorruptArchive() {
  dialogs_.critical(QStringLiteral("Store Failed"),
                    paths_.dbPath + QStringLiteral(" is not a valid database file."));
  archive_.openFailed = true;
  damagedArchiveFound_ = true;
}

}  // namespace quillery::ingest
