#pragma once

#include <QString>
#include <functional>

#include "archive/ArchiveFingerprint.h"

namespace quillery::platform {
class Progress;
}

namespace quillery::archive {

class Archive;

// The substring index that lets a search skip the messages that cannot match. It lives in a
// side file beside the archive (the archive's path followed by ".index"), attached to the
// archive's connection as "quillery_index", so the archive file itself keeps exactly its four
// tables and indexes for every other program, for the merge and for the exports.
//
// The side file holds one FTS5 table per searched column (quillery_body_fld for body_fld, and
// so for subj_fld, from_fld and to_fld), each naming, for every word triple of TrigramTokenizer,
// the messages that contain it, and a row of state: how far the index is built and the fingerprint
// of the archive it describes. It only ever answers with a superset of the messages a LIKE matches:
// a message that is deleted or changed keeps its old triples until the index is next rebuilt, which
// costs some needless candidates and never a hit.
//
// Every change that this connection makes to the email table keeps the index current through
// TEMP triggers made when the archive opens (they leave the archive's schema untouched and
// fire for this connection only). Changes by other programs, by another connection, or while
// the index was not current are found by the fingerprint when the archive opens and by
// SQLite's data version while it is open; such an index is not used again until it has been
// built anew. Nothing here ever makes an action on the archive fail: when the side file
// cannot be made or read, the index is off and every search runs as it always has.
class SearchIndex {
 public:
  enum class State {
    Off,       // no side file, or it cannot be used: nothing is indexed or searched
    Stale,     // it does not describe the archive: it must be built anew before use
    Building,  // messages up to builtUpTo() are in it; the rest are still to be indexed
    Current,   // every message is in it
  };

  // The schema name and the FTS5 table of a searched column ("body_fld", ...), by its name
  // and with the schema.
  static constexpr char kSchema[] = "quillery_index";
  static QString tableNameOf(const QString& column);
  static QString tableOf(const QString& column);
  static bool isIndexedColumn(const QString& column);

  explicit SearchIndex(Archive& archive);
  SearchIndex(const SearchIndex&) = delete;
  SearchIndex& operator=(const SearchIndex&) = delete;

  // After the archive has opened on the connection: attaches the side file (making it when
  // missing), compares its fingerprint with the archive's and makes the triggers. A side file
  // that is not a database is made again. Cheap: it reads a few rows.
  void attach();
  // Before the connection closes: a transaction left open is rolled back (as closing would),
  // and when no other program has changed the archive since it was attached, the archive's
  // fingerprint is written to the side file, so that the next open finds the index current.
  void detach();
  // The archive at this path is about to be replaced by another file (a restore): the side
  // file is removed, and this connection stops keeping it.
  void forget(const QString& archivePath);

  State state() const { return state_; }
  long long builtUpTo() const { return builtUpTo_; }

  // Whether a search may use the index now: it is current or being built, and no other
  // connection has committed to the archive since it was last known to be in step. Called
  // inside the transaction in which the search then runs.
  bool usable();
  // Whether build() has work to do: the index is stale, not yet complete, or holds so many
  // triples of deleted and changed messages that building it anew pays.
  bool needsBuilding();
  // Indexes the messages that are not yet in the index, in batches of their own
  // transactions, showing "Indexing..." with the count of indexed messages on the progress
  // panel when there are more than a few thousand. A stale index is emptied first. Between
  // batches stopRequested is asked; a stopped build keeps what it has done and goes on from
  // there the next time. Returns true when the index is current at the end.
  bool build(platform::Progress& progress, const std::function<bool()>& stopRequested = {});

  // For the triggers: whether a change to the message with this id is kept in the index, and
  // the count of messages deleted or changed since the index was built.
  bool keepsMessage(long long id) const;
  void countDropped() { ++droppedSinceAttach_; }

 private:
  bool openSideFile(const QString& sidePath);
  bool ensureSchema();
  bool readState();
  bool makeTriggers();
  long long dataVersion();
  // Writes state, built_upto and the archive's fingerprint into the side file's state row.
  bool writeState(const char* state, long long builtUpTo, const ArchiveFingerprint& fingerprint);
  bool emptyIndex();
  // Indexes the next batch of messages in a transaction of its own; done when there was none.
  bool indexBatch(long long& indexed, bool& done);
  // Detaches the side file and drops the triggers: nothing is kept or searched any more.
  void off();

  Archive& archive_;
  bool attached_ = false;
  State state_ = State::Off;
  long long builtUpTo_ = 0;
  long long syncedDataVersion_ = -1;
  // The fingerprint in the side file, the span of ids of the archive when attached, and the
  // messages dropped since the last build (recorded, and counted on this connection).
  ArchiveFingerprint stored_;
  long long extent_ = 0;
  long long dropped_ = 0;
  long long droppedSinceAttach_ = 0;
};

}  // namespace quillery::archive
