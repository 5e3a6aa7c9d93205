#include "archive/IndexFile.h"

#include <sqlite3.h>

#include <QFile>
#include <QStringList>

#include "archive/GramTokenizer.h"
#include "archive/PreparedStatement.h"
#include "archive/Vocabulary.h"

namespace quillery::archive {
namespace {

// The layout of the side file; a side file of another layout is made anew.
constexpr long long kFormat = 7;
// A text that touches every rule of the tokenizers: ASCII letters in both cases, letters that
// LIKE does not fold, Greek and Cyrillic, digits and the underscore, a malformed byte, words of
// two and three characters, and a word long enough to be cut into pieces. What they make of it
// is kept in the side file, so that a file whose words were read by other rules is made anew
// even where the format number was not raised with them.
constexpr char kProbeText[] =
    "Zeppelin ZEPP \xc3\xa9t\xc3\xa9 \xc3\x89T\xc3\x89 \xce\xa9\xce\xbc\xce\xad\xce\xb3\xce\xb1 "
    "\xd0\x9f\xd1\x80\xd0\xb8\xd0\xb2\xd0\xb5\xd1\x82 q3_2024 ab abc x\xff\xfe"
    "y supercalifragilisticexpialidocious-pneumonoultramicroscopicsilicovolcanoconiosis";

QByteArray rulesProbe() {
  const QByteArrayView text(kProbeText);
  return WordTokenizer::documentWords(text) + '|' + GramTokenizer::documentTriples(text);
}
// The FTS5 tables collect this many bytes in memory before they write a segment: fewer,
// larger segments cost less merging.
constexpr int kPendingBytes = 16 * 1024 * 1024;
// Another Quillery working on the same archive holds the side file only for short writes.
constexpr int kBusyMs = 2000;

}  // namespace

const char* const IndexFile::kColumnNames[kColumns] = {"body_fld", "subj_fld", "from_fld",
                                                       "to_fld"};

QString IndexFile::tableOf(const QString& column) {
  return QStringLiteral("quillery_") + column;
}

IndexFile::IndexFile() = default;

IndexFile::~IndexFile() {
  close();
}

bool IndexFile::open(const QString& path) {
  close();
  for (int attempt = 0; attempt < 2; ++attempt) {
    const QByteArray name = path.toUtf8();
    Schema schema = Schema::Failed;
    if (sqlite3_open_v2(name.constData(), &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) == SQLITE_OK &&
        sqlite3_busy_timeout(connection_, kBusyMs) == SQLITE_OK &&
        GramTokenizer::registerWith(connection_) &&
        WordTokenizer::registerWith(connection_, &seen_))
      schema = makeSchema();
    if (schema == Schema::Ready)
      return true;
    close();
    // Not a database, or one of another layout: it is only ever an index, so it is made anew.
    // Anything else (a lock held too long, a full disk) leaves it alone.
    if (schema != Schema::Foreign)
      return false;
    QFile::remove(path);
    QFile::remove(path + QStringLiteral("-journal"));
  }
  return false;
}

void IndexFile::close() {
  for (auto& insert : inserts_)
    insert.reset();
  vocabulary_.reset();
  seen_.forget();
  if (connection_ == nullptr)
    return;
  if (inTransaction())
    rollback();
  sqlite3_close(connection_);
  connection_ = nullptr;
}

bool IndexFile::hasMoved() const {
  int moved = 0;
  return connection_ == nullptr ||
         sqlite3_file_control(connection_, "main", SQLITE_FCNTL_HAS_MOVED, &moved) != SQLITE_OK ||
         moved != 0;
}

bool IndexFile::run(const QString& sql) {
  const QByteArray utf8 = sql.toUtf8();
  return sqlite3_exec(connection_, utf8.constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
}

IndexFile::Schema IndexFile::makeSchema() {
  {
    PreparedStatement format(connection_, QStringLiteral("SELECT format,probe FROM meta"));
    const bool read = format.step();
    if (read && (format.integer(0) != kFormat || format.bytes(1) != rulesProbe()))
      return Schema::Foreign;
    if (!read) {
      const int code = format.ok() ? format.error() : sqlite3_errcode(connection_);
      if (code == SQLITE_NOTADB || code == SQLITE_CORRUPT)
        return Schema::Foreign;
      PreparedStatement tables(connection_, QStringLiteral("SELECT count(*) FROM sqlite_master"));
      if (!tables.step())
        return Schema::Failed;
      if (tables.integer(0) != 0)
        return Schema::Foreign;
      QStringList statements = {
          QStringLiteral("CREATE TABLE meta(format INTEGER,state TEXT,built_upto INTEGER,"
                         "counter INTEGER,pages INTEGER,identity TEXT,dropped INTEGER,"
                         "probe BLOB)"),
          QStringLiteral("INSERT INTO meta VALUES(%1,'stale',0,NULL,NULL,NULL,0,X'%2')")
              .arg(kFormat)
              .arg(QString::fromLatin1(rulesProbe().toHex())),
          QStringLiteral("CREATE TABLE pending(id INTEGER PRIMARY KEY)")};
      for (const char* column : kColumnNames) {
        const QString table = tableOf(QLatin1String(column));
        statements << QStringLiteral(
                          "CREATE VIRTUAL TABLE %1 USING fts5(t,content='',"
                          "detail=none,columnsize=0,tokenize='%2')")
                          .arg(table, QLatin1String(WordTokenizer::kName))
                   << QStringLiteral("INSERT INTO %1(%1,rank) VALUES('hashsize',%2)")
                          .arg(table)
                          .arg(kPendingBytes);
      }
      statements << Vocabulary::schema();
      if (!begin())
        return Schema::Failed;
      for (const QString& statement : std::as_const(statements)) {
        if (!run(statement)) {
          rollback();
          return Schema::Failed;
        }
      }
      if (!commit())
        return Schema::Failed;
    }
  }
  for (int i = 0; i < kColumns; ++i) {
    inserts_[i] = std::make_unique<PreparedStatement>(
        connection_, QStringLiteral("INSERT INTO %1(rowid,t) VALUES(?1,?2)")
                         .arg(tableOf(QLatin1String(kColumnNames[i]))));
    if (!inserts_[i]->ok())
      return Schema::Failed;
  }
  vocabulary_ = std::make_unique<Vocabulary>(connection_);
  return vocabulary_->ok() ? Schema::Ready : Schema::Failed;
}

std::optional<IndexFile::State> IndexFile::readState() {
  PreparedStatement meta(
      connection_,
      QStringLiteral("SELECT state,built_upto,counter,pages,identity,dropped FROM meta"));
  if (!meta.step())
    return std::nullopt;
  State state;
  state.state = meta.bytes(0);
  state.builtUpTo = meta.integer(1);
  state.fingerprint.counter = meta.integer(2);
  state.fingerprint.pages = meta.integer(3);
  state.fingerprint.identity = QString::fromUtf8(meta.bytes(4));
  state.fingerprint.valid = !meta.isNull(4);
  state.dropped = meta.integer(5);
  return state;
}

bool IndexFile::writeState(const State& state) {
  PreparedStatement update(connection_,
                           QStringLiteral("UPDATE meta SET state=?1,built_upto=?2,counter=?3,"
                                          "pages=?4,identity=?5,dropped=?6"));
  update.bind(1, state.state);
  update.bind(2, state.builtUpTo);
  if (state.fingerprint.valid) {
    update.bind(3, state.fingerprint.counter);
    update.bind(4, state.fingerprint.pages);
    update.bind(5, state.fingerprint.identity.toUtf8());
  }
  update.bind(6, state.dropped);
  update.step();
  return update.ok() && update.error() == SQLITE_OK;
}

bool IndexFile::writePending(const std::vector<long long>& ids) {
  if (!run(QStringLiteral("DELETE FROM pending")))
    return false;
  PreparedStatement insert(connection_, QStringLiteral("INSERT OR IGNORE INTO pending VALUES(?1)"));
  for (const long long id : ids) {
    insert.reset();
    insert.bind(1, id);
    insert.step();
    if (insert.error() != SQLITE_OK)
      return false;
  }
  return insert.ok();
}

long long IndexFile::dataVersion() {
  PreparedStatement version(connection_, QStringLiteral("PRAGMA data_version"));
  return version.step() ? version.integer(0) : -1;
}

bool IndexFile::begin() {
  if (!run(QStringLiteral("BEGIN")))
    return false;
  // Another Quillery may have emptied the file: the words seen may no longer be in it.
  const long long version = dataVersion();
  if (version != seenVersion_)
    seen_.forget();
  seenVersion_ = version;
  return true;
}

bool IndexFile::commit() {
  return run(QStringLiteral("COMMIT"));
}

void IndexFile::rollback() {
  run(QStringLiteral("ROLLBACK"));
  seen_.forget();
}

bool IndexFile::inTransaction() const {
  return connection_ != nullptr && sqlite3_get_autocommit(connection_) == 0;
}

bool IndexFile::empty() {
  seen_.forget();
  if (!run(QStringLiteral("DELETE FROM pending")) || !vocabulary_->empty())
    return false;
  for (const char* column : kColumnNames) {
    if (!run(QStringLiteral("INSERT INTO %1(%1) VALUES('delete-all')")
                 .arg(tableOf(QLatin1String(column)))))
      return false;
  }
  return true;
}

bool IndexFile::add(long long id, const QByteArrayView (&texts)[kColumns]) {
  for (int i = 0; i < kColumns; ++i) {
    PreparedStatement& insert = *inserts_[i];
    insert.reset();
    insert.bind(1, id);
    insert.bindView(2, texts[i]);
    insert.step();
    const bool ok = insert.error() == SQLITE_OK;
    insert.reset();
    if (!ok)
      return false;
  }
  return vocabulary_->addFresh(seen_);
}

std::optional<QList<QByteArray>> IndexFile::wordsHolding(const QByteArray& run) {
  return vocabulary_->holding(run);
}

std::optional<std::vector<long long>> IndexFile::ids(const QString& query) {
  PreparedStatement select(connection_, query);
  std::vector<long long> ids;
  while (select.step())
    ids.push_back(select.integer(0));
  if (!select.ok() || select.error() != SQLITE_OK)
    return std::nullopt;
  // One table's matches come in rowid order already; combined ones need not.
  if (!std::is_sorted(ids.begin(), ids.end()))
    std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

}  // namespace quillery::archive
