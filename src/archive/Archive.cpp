#include "archive/Archive.h"

#include <sqlite3.h>

#include "platform/Dialogs.h"
#include "platform/Files.h"

namespace quillery::archive {
namespace {

// The signature that stands in for the desktop bundle's creator code.
constexpr char kSignature[] = "QLRY";

bool isNotADatabase(int code) {
  return code == SQLITE_NOTADB || code == SQLITE_CORRUPT;
}

}  // namespace

const char* const Archive::kCreateEmail =
    "CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld varchar(127) NOT NULL,"
    "to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime NOT NULL,"
    "mailbox varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext NOT NULL,"
    "numAttach INTEGER NOT NULL DEFAULT 0);";
const char* const Archive::kCreateAttachments =
    "CREATE TABLE attachments (id INT,type_fld varchar(127) NOT NULL,filename_fld varchar(127) "
    "NOT NULL,encode_fld INT default 0,attach_fld BLOB NOT NULL);";
const char* const Archive::kCreateOrigemail =
    "CREATE TABLE origemail (id INTEGER PRIMARY KEY,orig_fld BLOB NOT NULL);";
const char* const Archive::kCreateTags =
    "CREATE TABLE tags (id INTEGER PRIMARY KEY,cat_fld varchar(127) NOT NULL,key_fld "
    "varchar(127) NOT NULL,priority_fld INT DEFAULT 0,notes_fld BLOB NOT NULL);";
const char* const Archive::kOldFormatMessage =
    "This appears to be a pre-version 7.4.1 database format. The database format has been "
    "revised.  You can convert your old database files to the new format by selecting "
    "'Convert Database to New Format' from the File menu.";

Archive::Archive(platform::Dialogs& dialogs, platform::Files& files)
    : dialogs_(dialogs), files_(files) {}

Archive::~Archive() {
  close();
}

void Archive::close() {
  if (archiveConnection == nullptr)
    return;
  searchIndex_.detach();
  sqlite3_close(archiveConnection);
  archiveConnection = nullptr;
}

ExecResult Archive::exec(const QString& sql, int (*callback)(void*, int, char**, char**),
                         void* context) {
  ExecResult result;
  char* error = nullptr;
  const QByteArray utf8 = sql.toUtf8();
  ++executing_;
  result.code = sqlite3_exec(archiveConnection, utf8.constData(), callback, context, &error);
  --executing_;
  if (error != nullptr) {
    result.error = QString::fromUtf8(error);
    sqlite3_free(error);
  } else if (result.code != SQLITE_OK) {
    result.error = QString::fromUtf8(sqlite3_errstr(result.code));
  }
  return result;
}

QString Archive::filePath() const {
  if (archiveConnection == nullptr)
    return {};
  const char* path = sqlite3_db_filename(archiveConnection, "main");
  return path ? QString::fromUtf8(path) : QString();
}

long long Archive::lastInsertRowId() const {
  return archiveConnection ? sqlite3_last_insert_rowid(archiveConnection) : 0;
}

void Archive::openDB(const QString& dbPath, IndexUse indexUse) {
  const OpenStatus status = openArchive(dbPath, indexUse);
  if (status.ok())
    return;
  reportOpenFailure(status, dbPath);
  openFailed = true;
}

bool Archive::openForAction(const QString& dbPath) {
  openDB(dbPath);
  const bool opened = !openFailed;
  openFailed = false;
  return opened;
}

OpenStatus Archive::openArchive(const QString& dbPath, IndexUse indexUse) {
  OpenStatus status = openFile(dbPath);
  if (!status.ok())
    return status;
  // The email table comes first: only a file that has one can be of the old format, and
  // such a file must be refused before anything else is written to it.
  status = ensureTable("SELECT id FROM email LIMIT 1", kCreateEmail);
  if (!status.ok())
    return status;
  if (!hasCurrentFormat())
    return {OpenStatus::Outcome::OldFormat, 0, {}};
  status = createMissingTables();
  if (status.ok() && indexUse == IndexUse::Attach)
    searchIndex_.attach();
  return status;
}

OpenStatus Archive::openFile(const QString& dbPath) {
  close();
  const QByteArray path = dbPath.toUtf8();
  // SQLite would take an empty name as a private temporary database; for the user it is
  // no archive file at all.
  const int code =
      dbPath.isEmpty() ? SQLITE_CANTOPEN : sqlite3_open(path.constData(), &archiveConnection);
  if (code != SQLITE_OK) {
    const QString error = QString::fromUtf8(archiveConnection ? sqlite3_errmsg(archiveConnection)
                                                              : sqlite3_errstr(code));
    // A failed open still hands back a handle that must be released.
    close();
    return {OpenStatus::Outcome::CannotOpen, code, error};
  }
  setFileCreator(dbPath);
  return {};
}

bool Archive::hasCurrentFormat() {
  return exec(QStringLiteral("SELECT numAttach FROM email LIMIT 1")).ok();
}

OpenStatus Archive::createMissingTables() {
  const std::pair<const char*, const char*> tables[] = {
      {"SELECT id FROM email LIMIT 1", kCreateEmail},
      {"SELECT id FROM attachments LIMIT 1", kCreateAttachments},
      {"SELECT id FROM origemail LIMIT 1", kCreateOrigemail},
      {"SELECT id FROM tags LIMIT 1", kCreateTags}};
  for (const auto& [probe, create] : tables) {
    const OpenStatus status = ensureTable(probe, create);
    if (!status.ok())
      return status;
  }
  ensureIndexes();
  return {};
}

OpenStatus Archive::ensureTable(const char* probe, const char* create) {
  if (exec(QString::fromUtf8(probe)).ok())
    return {};
  const ExecResult created = exec(QString::fromUtf8(create));
  if (created.ok())
    return {};
  const auto outcome = isNotADatabase(created.code) ? OpenStatus::Outcome::NotADatabase
                                                    : OpenStatus::Outcome::CreateFailed;
  return {outcome, created.code, created.error};
}

void Archive::reportOpenFailure(const OpenStatus& status, const QString& path) {
  switch (status.outcome) {
    case OpenStatus::Outcome::Opened:
      return;
    case OpenStatus::Outcome::CannotOpen:
      if (!isNotADatabase(status.code) && !path.isEmpty()) {
        dialogs_.critical(QString(), QStringLiteral("SQL Error: %1 %2").arg(path, status.error));
      } else {
        dialogs_.critical(QStringLiteral("Open Failed"),
                          QStringLiteral("%1 is not a valid database file.").arg(path));
      }
      return;
    case OpenStatus::Outcome::NotADatabase:
      dialogs_.critical(QStringLiteral("Open Failed"),
                        QStringLiteral("This is not a valid database file."));
      return;
    case OpenStatus::Outcome::OldFormat:
      dialogs_.critical(QStringLiteral("Open Failed"), QString::fromUtf8(kOldFormatMessage));
      return;
    case OpenStatus::Outcome::CreateFailed:
      dialogs_.critical(QString(),
                        QStringLiteral("SQL Error: %1 %2").arg(status.code).arg(status.error));
      return;
  }
}

bool Archive::deleteMessageRows(int id, std::initializer_list<MessageTable> tables,
                                const std::function<bool(const ExecResult&)>& onFailure) {
  static constexpr const char* kNames[] = {"email", "attachments", "origemail", "tags"};
  bool allDone = true;
  for (const MessageTable table : tables) {
    const ExecResult result = exec(QStringLiteral("DELETE FROM %1 WHERE id=%2")
                                       .arg(QLatin1String(kNames[int(table)]))
                                       .arg(id));
    if (result.ok())
      continue;
    allDone = false;
    if (!onFailure(result))
      break;
  }
  return allDone;
}

void Archive::ensureIndexes() {
  // Beyond the four tables: the duplicate test and the date search look messages up by
  // date, and every message's attachments are found by id. Failures leave a slower archive.
  exec(QStringLiteral("CREATE INDEX IF NOT EXISTS email_date_idx ON email(date_fld)"));
  exec(QStringLiteral("CREATE INDEX IF NOT EXISTS attachments_id_idx ON attachments(id)"));
}

void Archive::setFileCreator(const QString& path) {
  const QByteArray code(kSignature);
  files_.setExtendedAttribute(path, QStringLiteral("user.quillery.creator"), code);
  files_.setExtendedAttribute(path, QStringLiteral("user.quillery.type"), code);
}

}  // namespace quillery::archive
