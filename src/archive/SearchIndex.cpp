#include "archive/SearchIndex.h"

#include <sqlite3.h>

#include <QFile>

#include "archive/Archive.h"
#include "archive/PreparedStatement.h"
#include "archive/TrigramTokenizer.h"
#include "platform/Progress.h"

namespace quillery::archive {
namespace {

// The layout of the side file; a side file of another layout is made anew.
constexpr long long kFormat = 1;
constexpr const char* kColumns[] = {"body_fld", "subj_fld", "from_fld", "to_fld"};
// Messages indexed per transaction while building, and how many may be indexed without the
// progress panel.
constexpr int kBatch = 2000;
constexpr long long kQuietBuild = 5000;
// The FTS5 tables collect this many bytes in memory before they write a segment: fewer, larger
// segments cost less merging while a store run adds messages.
constexpr int kPendingBytes = 16 * 1024 * 1024;

void keepsMessageFunction(sqlite3_context* context, int, sqlite3_value** values) {
  const auto* index = static_cast<const SearchIndex*>(sqlite3_user_data(context));
  sqlite3_result_int(context, index->keepsMessage(sqlite3_value_int64(values[0])) ? 1 : 0);
}

// Counts a dropped message and answers 0, so that the delete trigger has nothing more to do.
void countDroppedFunction(sqlite3_context* context, int, sqlite3_value**) {
  static_cast<SearchIndex*>(sqlite3_user_data(context))->countDropped();
  sqlite3_result_int(context, 0);
}

QString quotedPath(QString path) {
  return QLatin1Char('"') + path.replace(QLatin1Char('"'), QLatin1String("\"\"")) +
         QLatin1Char('"');
}

// A trigger names the tables it writes without their schema; a TEMP trigger finds them in the
// attached side file, the archive having no tables of these names.
QString insertsOf(const char* row) {
  QString inserts;
  for (const char* column : kColumns) {
    inserts += QStringLiteral("INSERT INTO %1(rowid,t) VALUES(%2.id,%2.%3);")
                   .arg(SearchIndex::tableNameOf(QLatin1String(column)), QLatin1String(row),
                        QLatin1String(column));
  }
  return inserts;
}

}  // namespace

QString SearchIndex::tableNameOf(const QString& column) {
  return QStringLiteral("quillery_") + column;
}

QString SearchIndex::tableOf(const QString& column) {
  return QLatin1String(kSchema) + QLatin1Char('.') + tableNameOf(column);
}

bool SearchIndex::isIndexedColumn(const QString& column) {
  for (const char* indexed : kColumns) {
    if (column == QLatin1String(indexed))
      return true;
  }
  return false;
}

SearchIndex::SearchIndex(Archive& archive) : archive_(archive) {}

void SearchIndex::attach() {
  off();
  sqlite3* connection = archive_.archiveConnection;
  const QString archivePath = archive_.filePath();
  if (connection == nullptr || archivePath.isEmpty() || !TrigramTokenizer::registerWith(connection))
    return;
  sqlite3_create_function_v2(connection, "quillery_index_keeps", 1, SQLITE_UTF8, this,
                             keepsMessageFunction, nullptr, nullptr, nullptr);
  sqlite3_create_function_v2(connection, "quillery_index_dropped", 1, SQLITE_UTF8, this,
                             countDroppedFunction, nullptr, nullptr, nullptr);
  const QString sidePath = archivePath + QStringLiteral(".index");
  bool opened = openSideFile(sidePath);
  if (!opened) {
    // A side file of another layout, or not a database at all: it is only ever an index.
    off();
    QFile::remove(sidePath);
    opened = openSideFile(sidePath);
  }
  if (!opened || !readState() || !makeTriggers())
    off();
}

bool SearchIndex::openSideFile(const QString& sidePath) {
  if (!archive_.exec(QStringLiteral("ATTACH %1 AS %2").arg(quotedPath(sidePath), kSchema)).ok())
    return false;
  attached_ = true;
  return ensureSchema();
}

bool SearchIndex::ensureSchema() {
  sqlite3* connection = archive_.archiveConnection;
  {
    PreparedStatement format(connection, QStringLiteral("SELECT format FROM %1.meta").arg(kSchema));
    if (format.step())
      return format.integer(0) == kFormat;
    PreparedStatement tables(connection,
                             QStringLiteral("SELECT count(*) FROM %1.sqlite_master").arg(kSchema));
    if (!tables.step() || tables.integer(0) != 0)
      return false;
  }
  QStringList statements = {
      QStringLiteral("BEGIN"),
      QStringLiteral("CREATE TABLE %1.meta(format INTEGER,state TEXT,built_upto INTEGER,"
                     "counter INTEGER,pages INTEGER,identity TEXT,dropped INTEGER)")
          .arg(kSchema),
      QStringLiteral("INSERT INTO %1.meta VALUES(%2,'stale',0,NULL,NULL,NULL,0)")
          .arg(kSchema)
          .arg(kFormat)};
  for (const char* column : kColumns) {
    const QString table = tableOf(QLatin1String(column));
    statements << QStringLiteral(
                      "CREATE VIRTUAL TABLE %1 USING fts5(t,content='',detail=none,"
                      "columnsize=0,tokenize='%2')")
                      .arg(table, QLatin1String(TrigramTokenizer::kName))
               << QStringLiteral("INSERT INTO %1(%2,rank) VALUES('hashsize',%3)")
                      .arg(table, tableNameOf(QLatin1String(column)))
                      .arg(kPendingBytes);
  }
  statements << QStringLiteral("COMMIT");
  for (const QString& statement : std::as_const(statements)) {
    if (!archive_.exec(statement).ok()) {
      archive_.exec(QStringLiteral("ROLLBACK"));
      return false;
    }
  }
  return true;
}

bool SearchIndex::readState() {
  sqlite3* connection = archive_.archiveConnection;
  if (!archive_.exec(QStringLiteral("BEGIN")).ok())
    return false;
  const ArchiveFingerprint now = ArchiveFingerprint::read(connection);
  PreparedStatement meta(
      connection,
      QStringLiteral("SELECT state,built_upto,counter,pages,identity,dropped FROM %1.meta")
          .arg(kSchema));
  bool ok = now.valid && meta.step();
  if (ok) {
    stored_ = {meta.integer(2), meta.integer(3), QString::fromUtf8(meta.bytes(4))};
    stored_.valid = !meta.isNull(4);
    dropped_ = meta.integer(5);
    extent_ = now.hasMessages ? now.highestId - now.lowestId + 1 : 0;
    const QByteArray state = meta.bytes(0);
    if (stored_ == now && state == "current") {
      state_ = State::Current;
    } else if (stored_ == now && state == "building") {
      state_ = State::Building;
      builtUpTo_ = meta.integer(1);
    } else if (!now.hasMessages) {
      // Nothing to index: whatever the side file held goes, and the index is current.
      ok = emptyIndex() && writeState("current", 0, now);
      state_ = State::Current;
    } else {
      ok = writeState("stale", 0, ArchiveFingerprint());
      state_ = State::Stale;
    }
  }
  syncedDataVersion_ = dataVersion();
  ok = archive_.exec(QStringLiteral("COMMIT")).ok() && ok && syncedDataVersion_ >= 0;
  if (!ok)
    archive_.exec(QStringLiteral("ROLLBACK"));
  return ok;
}

bool SearchIndex::makeTriggers() {
  // A changed message gives its new triples; its old ones stay until the next build.
  const QString triggers[] = {
      QStringLiteral("CREATE TEMP TRIGGER quillery_index_insert AFTER INSERT ON main.email "
                     "WHEN quillery_index_keeps(new.id) BEGIN %1 END")
          .arg(insertsOf("new")),
      QStringLiteral("CREATE TEMP TRIGGER quillery_index_update AFTER UPDATE OF id,body_fld,"
                     "subj_fld,from_fld,to_fld ON main.email WHEN quillery_index_keeps(new.id) "
                     "BEGIN SELECT quillery_index_dropped(old.id); %1 END")
          .arg(insertsOf("new")),
      QStringLiteral("CREATE TEMP TRIGGER quillery_index_delete AFTER DELETE ON main.email "
                     "WHEN quillery_index_dropped(old.id) BEGIN SELECT 1; END"),
  };
  for (const QString& trigger : triggers) {
    if (!archive_.exec(trigger).ok())
      return false;
  }
  return true;
}

void SearchIndex::off() {
  if (attached_ && archive_.isOpen()) {
    for (const char* trigger : {"insert", "update", "delete"})
      archive_.exec(QStringLiteral("DROP TRIGGER IF EXISTS temp.quillery_index_%1").arg(trigger));
    archive_.exec(QStringLiteral("DETACH %1").arg(kSchema));
  }
  attached_ = false;
  state_ = State::Off;
  builtUpTo_ = 0;
  syncedDataVersion_ = -1;
  dropped_ = 0;
  droppedSinceAttach_ = 0;
  stored_ = ArchiveFingerprint();
}

void SearchIndex::detach() {
  if (!attached_ || !archive_.isOpen())
    return;
  sqlite3* connection = archive_.archiveConnection;
  if (sqlite3_get_autocommit(connection) == 0)
    archive_.exec(QStringLiteral("ROLLBACK"));
  if (state_ == State::Current || state_ == State::Building) {
    archive_.exec(QStringLiteral("BEGIN"));
    if (dataVersion() == syncedDataVersion_) {
      const ArchiveFingerprint now = ArchiveFingerprint::read(connection);
      if (now.valid && (!(now == stored_) || droppedSinceAttach_ != 0)) {
        dropped_ += droppedSinceAttach_;
        writeState(state_ == State::Current ? "current" : "building", builtUpTo_, now);
      }
    }
    archive_.exec(QStringLiteral("COMMIT"));
  }
  attached_ = false;
  state_ = State::Off;
}

void SearchIndex::forget(const QString& archivePath) {
  off();
  QFile::remove(archivePath + QStringLiteral(".index"));
  QFile::remove(archivePath + QStringLiteral(".index-journal"));
}

bool SearchIndex::keepsMessage(long long id) const {
  return state_ == State::Current || (state_ == State::Building && id <= builtUpTo_);
}

long long SearchIndex::dataVersion() {
  PreparedStatement version(archive_.archiveConnection, QStringLiteral("PRAGMA main.data_version"));
  return version.step() ? version.integer(0) : -1;
}

bool SearchIndex::usable() {
  if (state_ != State::Current && state_ != State::Building)
    return false;
  if (dataVersion() == syncedDataVersion_)
    return true;
  // Another program has written to the archive: what it changed is not in the index.
  state_ = State::Stale;
  return false;
}

bool SearchIndex::writeState(const char* state, long long builtUpTo,
                             const ArchiveFingerprint& fingerprint) {
  PreparedStatement update(archive_.archiveConnection,
                           QStringLiteral("UPDATE %1.meta SET state=?1,built_upto=?2,counter=?3,"
                                          "pages=?4,identity=?5,dropped=?6")
                               .arg(kSchema));
  update.bind(1, QByteArray(state));
  update.bind(2, builtUpTo);
  if (fingerprint.valid) {
    update.bind(3, fingerprint.counter);
    update.bind(4, fingerprint.pages);
    update.bind(5, fingerprint.identity.toUtf8());
  }
  update.bind(6, dropped_);
  update.step();
  if (update.error() != SQLITE_OK)
    return false;
  stored_ = fingerprint;
  return true;
}

bool SearchIndex::emptyIndex() {
  for (const char* column : kColumns) {
    const QString table = tableOf(QLatin1String(column));
    if (!archive_
             .exec(QStringLiteral("INSERT INTO %1(%2) VALUES('delete-all')")
                       .arg(table, tableNameOf(QLatin1String(column))))
             .ok())
      return false;
  }
  dropped_ = 0;
  droppedSinceAttach_ = 0;
  return true;
}

bool SearchIndex::needsBuilding() {
  if (state_ == State::Stale || state_ == State::Building)
    return true;
  // Deleted and changed messages keep their triples: once they outnumber the messages twice
  // over, the needless candidates cost more than building anew.
  return state_ == State::Current && dropped_ + droppedSinceAttach_ > 2 * extent_ + 10000;
}

bool SearchIndex::build(platform::Progress& progress, const std::function<bool()>& stopRequested) {
  if (!needsBuilding())
    return state_ == State::Current;
  sqlite3* connection = archive_.archiveConnection;
  if (!archive_.exec(QStringLiteral("BEGIN")).ok())
    return false;
  // What another program wrote since the index was attached is not in it: start afresh then.
  const long long version = dataVersion();
  const ArchiveFingerprint now = ArchiveFingerprint::read(connection);
  bool ok = now.valid;
  if (ok && (state_ != State::Building || version != syncedDataVersion_)) {
    ok = emptyIndex() && writeState("building", 0, now);
    builtUpTo_ = 0;
  }
  PreparedStatement remaining(connection,
                              QStringLiteral("SELECT count(*) FROM main.email WHERE id>?1"));
  remaining.bind(1, builtUpTo_);
  const long long toIndex = ok && remaining.step() ? remaining.integer(0) : 0;
  if (!ok || !archive_.exec(QStringLiteral("COMMIT")).ok()) {
    archive_.exec(QStringLiteral("ROLLBACK"));
    off();
    return false;
  }
  state_ = State::Building;
  syncedDataVersion_ = version;
  const bool shown = toIndex > kQuietBuild;
  if (shown)
    progress.open(QStringLiteral("Indexing..."));
  long long indexed = 0;
  bool done = false;
  while (ok && !done && !(stopRequested && stopRequested())) {
    ok = indexBatch(indexed, done);
    if (shown)
      progress.showCount(QString::number(indexed));
  }
  if (shown)
    progress.close();
  if (!ok)
    off();
  return ok && done;
}

bool SearchIndex::indexBatch(long long& indexed, bool& done) {
  sqlite3* connection = archive_.archiveConnection;
  if (!archive_.exec(QStringLiteral("BEGIN")).ok())
    return false;
  bool ok = dataVersion() == syncedDataVersion_;
  // The batch ends at the kBatch-th message after the last one indexed, or at the last.
  PreparedStatement last(connection,
                         QStringLiteral("SELECT max(id),count(*) FROM (SELECT id FROM main.email "
                                        "WHERE id>?1 ORDER BY id LIMIT %1)")
                             .arg(kBatch));
  last.bind(1, builtUpTo_);
  ok = ok && last.step();
  const long long upTo = ok ? last.integer(0) : 0;
  done = ok && last.isNull(0);
  for (const char* column : kColumns) {
    if (!ok || done)
      break;
    ok = archive_
             .exec(QStringLiteral("INSERT INTO %1(rowid,t) SELECT id,%2 FROM main.email WHERE "
                                  "id>%3 AND id<=%4")
                       .arg(tableOf(QLatin1String(column)), QLatin1String(column))
                       .arg(builtUpTo_)
                       .arg(upTo))
             .ok();
  }
  if (ok) {
    const ArchiveFingerprint now = ArchiveFingerprint::read(connection);
    ok = now.valid && writeState(done ? "current" : "building", done ? 0 : upTo, now);
  }
  if (!ok || !archive_.exec(QStringLiteral("COMMIT")).ok()) {
    archive_.exec(QStringLiteral("ROLLBACK"));
    return false;
  }
  if (done) {
    state_ = State::Current;
    builtUpTo_ = 0;
  } else {
    indexed += last.integer(1);
    builtUpTo_ = upTo;
  }
  return true;
}

}  // namespace quillery::archive
