#include "archive/SearchIndex.h"

#include <sqlite3.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <algorithm>
#include <climits>
#include <cstring>

#include "archive/Archive.h"
#include "archive/ArchiveFingerprint.h"
#include "archive/CandidateTable.h"
#include "archive/IndexFeeder.h"
#include "archive/PreparedStatement.h"
#include "platform/Progress.h"

namespace quillery::archive {
namespace {

// Messages indexed per transaction while building, and how many may be indexed without the
// progress panel.
constexpr int kBatch = 2000;
constexpr long long kQuietBuild = 5000;
// Noted messages are added while the event loop is idle and no store run is under way, in
// slices of this many milliseconds, looked for this often; the side file is committed every
// so many messages and when none are left.
constexpr int kIdleSliceMs = 20;
constexpr int kIdleCheckMs = 200;
constexpr int kCommitEvery = 5000;

// Inserted and deleted messages; changed ones come from the trigger below, which fires only
// when a searched column (or the id) is set, not for the attachment count a store run sets.
void updateHook(void* index, int operation, const char* database, const char* table,
                sqlite3_int64 id) {
  if (operation != SQLITE_UPDATE && std::strcmp(database, "main") == 0 &&
      sqlite3_stricmp(table, "email") == 0)
    static_cast<SearchIndex*>(index)->rowChanged(operation, id);
}

void changedFunction(sqlite3_context* context, int, sqlite3_value** values) {
  auto* index = static_cast<SearchIndex*>(sqlite3_user_data(context));
  index->rowChanged(SQLITE_DELETE, sqlite3_value_int64(values[0]));
  index->rowChanged(SQLITE_INSERT, sqlite3_value_int64(values[1]));
  sqlite3_result_int(context, 0);
}

// Made on the connection only: it leaves the archive's schema as it is.
constexpr char kChangeTrigger[] =
    "CREATE TEMP TRIGGER IF NOT EXISTS quillery_index_changed AFTER UPDATE OF "
    "id,body_fld,subj_fld,from_fld,to_fld ON main.email "
    "WHEN quillery_index_changed(old.id,new.id) BEGIN SELECT 1; END";

bool hasEventLoop() {
  return QCoreApplication::instance() != nullptr;
}

}  // namespace

bool SearchIndex::isIndexedColumn(const QString& column) {
  for (const char* indexed : IndexFile::kColumnNames) {
    if (column == QLatin1String(indexed))
      return true;
  }
  return false;
}

SearchIndex::SearchIndex(Archive& archive) : archive_(archive) {
  idleTimer_.setSingleShot(true);
  connect(&idleTimer_, &QTimer::timeout, this, &SearchIndex::addNotedWhileIdle);
}

SearchIndex::~SearchIndex() = default;

void SearchIndex::attach() {
  off();
  sqlite3* connection = archive_.archiveConnection;
  const QString archivePath = archive_.filePath();
  if (connection == nullptr || archivePath.isEmpty())
    return;
  // The side file stays open while the same archive is opened again, as every search does.
  const QString sidePath = archivePath + QStringLiteral(".index");
  const bool reused = sidePath == sidePath_ && file_.isOpen() && !file_.hasMoved();
  if (!reused) {
    file_.close();
    sidePath_ = sidePath;
  }
  // A side file kept open that something else has changed meanwhile is opened afresh.
  bool ready = (reused || file_.open(sidePath)) && readState();
  if (!ready && reused) {
    file_.close();
    ready = file_.open(sidePath) && readState();
  }
  if (!ready || !CandidateTable::registerWith(connection, &candidates_) ||
      sqlite3_create_function_v2(connection, "quillery_index_changed", 2, SQLITE_UTF8, this,
                                 changedFunction, nullptr, nullptr, nullptr) != SQLITE_OK ||
      !archive_.exec(QLatin1String(kChangeTrigger)).ok()) {
    fail();
    return;
  }
  feeder_ = std::make_unique<IndexFeeder>(connection, file_);
  sqlite3_update_hook(connection, updateHook, this);
}

void SearchIndex::fail() {
  off();
  file_.close();
  sidePath_.clear();
}

bool SearchIndex::readState() {
  if (!archive_.exec(QStringLiteral("BEGIN")).ok())
    return false;
  const ArchiveFingerprint now = ArchiveFingerprint::read(archive_.archiveConnection);
  syncedDataVersion_ = dataVersion();
  archive_.exec(QStringLiteral("COMMIT"));
  syncedFileVersion_ = file_.dataVersion();
  const std::optional<IndexFile::State> stored = file_.readState();
  if (!now.valid || !stored || syncedDataVersion_ < 0 || syncedFileVersion_ < 0)
    return false;
  stored_ = *stored;
  span_ = now.hasMessages ? now.highestId - now.lowestId + 1 : 0;
  const bool same = stored_.fingerprint == now;
  if (same && (stored_.state == "current" || stored_.state == "building")) {
    state_ = stored_.state == "current" ? State::Current : State::Building;
    builtUpTo_ = stored_.builtUpTo;
    std::optional<std::vector<long long>> pending = file_.pending();
    if (!pending)
      return false;
    noted_ = std::move(*pending);
    if (!noted_.empty() && hasEventLoop())
      idleTimer_.start(kIdleCheckMs);
    return true;
  }
  // The index describes another state of the archive. It is marked so at once, so that no
  // later coincidence of fingerprints can make it look current.
  IndexFile::State next;
  next.state = now.hasMessages ? "stale" : "current";
  if (!now.hasMessages)
    next.fingerprint = now;
  if (!file_.begin())
    return false;
  if ((!now.hasMessages && !file_.empty()) || !file_.writeState(next) || !file_.commit()) {
    file_.rollback();
    return false;
  }
  stored_ = next;
  state_ = now.hasMessages ? State::Stale : State::Current;
  return true;
}

void SearchIndex::off() {
  idleTimer_.stop();
  if (archive_.isOpen()) {
    sqlite3_update_hook(archive_.archiveConnection, nullptr, nullptr);
    archive_.exec(QStringLiteral("DROP TRIGGER IF EXISTS temp.quillery_index_changed"));
  }
  feeder_.reset();
  // What was added since the last commit belongs to a session that did not record it.
  if (file_.inTransaction())
    file_.rollback();
  state_ = State::Off;
  builtUpTo_ = 0;
  syncedDataVersion_ = -1;
  syncedFileVersion_ = -1;
  stored_ = IndexFile::State();
  span_ = 0;
  droppedSinceAttach_ = 0;
  noted_.clear();
  candidates_.clear();
  addedSinceCommit_ = 0;
  pendingChanged_ = false;
}

void SearchIndex::detach() {
  if (!file_.isOpen()) {
    off();
    return;
  }
  sqlite3* connection = archive_.archiveConnection;
  if (connection != nullptr && sqlite3_get_autocommit(connection) == 0)
    archive_.exec(QStringLiteral("ROLLBACK"));
  if (state_ == State::Current || state_ == State::Building) {
    archive_.exec(QStringLiteral("BEGIN"));
    const long long version = dataVersion();
    const ArchiveFingerprint now = ArchiveFingerprint::read(connection);
    archive_.exec(QStringLiteral("COMMIT"));
    // The messages still to be added are kept with the fingerprint: together with the
    // words they describe the archive. A side file that another Quillery has written
    // meanwhile is left as that one left it.
    if (version == syncedDataVersion_ && now.valid &&
        (!(now == stored_.fingerprint) || droppedSinceAttach_ != 0 || file_.inTransaction() ||
         pendingChanged_)) {
      IndexFile::State next = stored_;
      next.fingerprint = now;
      next.dropped += droppedSinceAttach_;
      std::sort(noted_.begin(), noted_.end());
      noted_.erase(std::unique(noted_.begin(), noted_.end()), noted_.end());
      if ((file_.inTransaction() || file_.begin()) && file_.writePending(noted_) &&
          file_.writeState(next) && fileInStep())
        file_.commit();
    }
  }
  off();
}

void SearchIndex::forget(const QString& archivePath) {
  const QString sidePath = archivePath + QStringLiteral(".index");
  if (sidePath == sidePath_)
    fail();
  QFile::remove(archivePath + QStringLiteral(".index"));
  QFile::remove(archivePath + QStringLiteral(".index-journal"));
}

bool SearchIndex::keepsMessage(long long id) const {
  return state_ == State::Current || (state_ == State::Building && id <= builtUpTo_);
}

void SearchIndex::rowChanged(int operation, long long id) {
  if (operation == SQLITE_DELETE) {
    ++droppedSinceAttach_;
    return;
  }
  if (!keepsMessage(id))
    return;
  noted_.push_back(id);
  pendingChanged_ = true;
  if (hasEventLoop() && !idleTimer_.isActive())
    idleTimer_.start(kIdleCheckMs);
}

long long SearchIndex::dataVersion() {
  PreparedStatement version(archive_.archiveConnection, QStringLiteral("PRAGMA main.data_version"));
  return version.step() ? version.integer(0) : -1;
}

bool SearchIndex::fileInStep() {
  return syncedFileVersion_ >= 0 && file_.dataVersion() == syncedFileVersion_;
}

bool SearchIndex::usable() {
  if (state_ != State::Current && state_ != State::Building)
    return false;
  // Another program has written to the archive (what it changed is not in the index), or
  // another Quillery to the side file (which may no longer hold what this one knows of).
  if (dataVersion() != syncedDataVersion_ || !fileInStep()) {
    state_ = State::Stale;
    return false;
  }
  // The side file is not left in a transaction: another program may want to write it.
  if (addNoted(noted_.size()) && (!file_.inTransaction() || file_.commit()))
    return true;
  fail();
  return false;
}

bool SearchIndex::needsBuilding() const {
  if (state_ == State::Stale || state_ == State::Building || !noted_.empty())
    return true;
  // Deleted and changed messages keep their words: once they outnumber the messages twice
  // over, the needless candidates cost more than building anew.
  return state_ == State::Current && stored_.dropped + droppedSinceAttach_ > 2 * span_ + 10000;
}

std::optional<std::size_t> SearchIndex::prepareCandidates(const QString& query) {
  std::optional<std::vector<long long>> ids = file_.ids(query);
  if (!ids) {
    fail();
    return std::nullopt;
  }
  // Another Quillery may have emptied the side file since usable() looked.
  if (!fileInStep()) {
    state_ = State::Stale;
    return std::nullopt;
  }
  candidates_ = std::move(*ids);
  return candidates_.size();
}

bool SearchIndex::addNoted(std::size_t most) {
  const std::size_t before = noted_.size();
  if (!feeder_->addMessages(noted_, most))
    return false;
  addedSinceCommit_ += int(before - noted_.size());
  pendingChanged_ = pendingChanged_ || before != noted_.size();
  return true;
}

void SearchIndex::addNotedWhileIdle() {
  if (!file_.isOpen() || noted_.empty() || building_)
    return;
  // Never inside a statement of the archive's connection (an event handled from a row
  // callback), nor while a store run stores: it is then at its fastest without the index.
  if (archive_.executing() || archive_.storeRunUnderWay) {
    idleTimer_.start(kIdleCheckMs);
    return;
  }
  QElapsedTimer slice;
  slice.start();
  bool ok = true;
  while (ok && !noted_.empty() && slice.elapsed() < kIdleSliceMs)
    ok = addNoted(64);
  if (ok && (noted_.empty() || addedSinceCommit_ >= kCommitEvery)) {
    ok = file_.commit();
    addedSinceCommit_ = 0;
  }
  if (!ok)
    fail();
  else if (!noted_.empty())
    idleTimer_.start(0);
}

bool SearchIndex::startBuilding() {
  // What the index holds goes: it describes another state of the archive.
  archive_.exec(QStringLiteral("BEGIN"));
  syncedDataVersion_ = dataVersion();
  const ArchiveFingerprint now = ArchiveFingerprint::read(archive_.archiveConnection);
  archive_.exec(QStringLiteral("COMMIT"));
  IndexFile::State next;
  next.state = "building";
  next.fingerprint = now;
  noted_.clear();
  if (!now.valid || syncedDataVersion_ < 0 || !(file_.inTransaction() || file_.begin()) ||
      !file_.empty() || !file_.writeState(next))
    return false;
  // Emptied under this connection's lock: what others wrote before is gone.
  syncedFileVersion_ = file_.dataVersion();
  if (syncedFileVersion_ < 0 || !file_.commit())
    return false;
  stored_ = next;
  state_ = State::Building;
  builtUpTo_ = 0;
  droppedSinceAttach_ = 0;
  return true;
}

bool SearchIndex::build(platform::Progress& progress, const std::function<bool()>& stopRequested) {
  if (!needsBuilding())
    return state_ == State::Current;
  const bool garbage = state_ == State::Current && noted_.empty();
  if ((state_ == State::Stale || garbage || dataVersion() != syncedDataVersion_) &&
      !startBuilding()) {
    fail();
    return false;
  }
  PreparedStatement remaining(archive_.archiveConnection,
                              QStringLiteral("SELECT count(*) FROM main.email WHERE id>?1"));
  remaining.bind(1, state_ == State::Building ? builtUpTo_ : LLONG_MAX);
  const long long toIndex =
      qsizetype(noted_.size()) + (remaining.step() ? remaining.integer(0) : 0);
  remaining.reset();
  const bool shown = toIndex > kQuietBuild;
  if (shown)
    progress.open(QStringLiteral("Indexing..."));
  long long indexed = 0;
  bool ok = true;
  building_ = true;
  const auto stepped = [&] {
    if (shown)
      progress.showCount(QString::number(indexed));
    progress.keepResponsive();
    return !(stopRequested && stopRequested());
  };
  while (ok && !noted_.empty() && stepped()) {
    const std::size_t before = noted_.size();
    ok = addNoted(kBatch) && file_.commit();
    indexed += qsizetype(before - noted_.size());
  }
  bool done = state_ == State::Current;
  while (ok && !done && stepped())
    ok = indexBatch(indexed, done);
  building_ = false;
  if (shown)
    progress.close();
  if (!ok)
    fail();
  return ok && done && noted_.empty();
}

bool SearchIndex::indexBatch(long long& indexed, bool& done) {
  archive_.exec(QStringLiteral("BEGIN"));
  long long upTo = builtUpTo_;
  int count = 0;
  bool ok =
      dataVersion() == syncedDataVersion_ && feeder_->addAfter(builtUpTo_, kBatch, upTo, count);
  done = ok && count == 0;
  IndexFile::State next = stored_;
  next.state = done ? "current" : "building";
  next.builtUpTo = done ? 0 : upTo;
  if (ok)
    next.fingerprint = ArchiveFingerprint::read(archive_.archiveConnection);
  archive_.exec(QStringLiteral("COMMIT"));
  ok = ok && next.fingerprint.valid && file_.writeState(next) && fileInStep() && file_.commit();
  if (!ok) {
    file_.rollback();
    return false;
  }
  stored_ = next;
  if (done)
    state_ = State::Current;
  builtUpTo_ = next.builtUpTo;
  indexed += count;
  return true;
}

}  // namespace quillery::archive
