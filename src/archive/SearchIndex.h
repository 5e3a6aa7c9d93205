#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "archive/IndexFile.h"

namespace quillery::platform {
class Progress;
}

namespace quillery::archive {

class Archive;
class IndexFeeder;

// The substring index that lets a search skip the messages that cannot match. It lives in a
// side file beside the archive (the archive's path followed by ".index", see IndexFile) on a
// connection of its own; the archive file keeps exactly its four tables and indexes for every
// other program, for the merge and for the exports.
//
// The index only ever narrows a search to a superset of its hits: every message is in it with
// the words of its texts, and a message that is deleted or changed keeps its old words until
// the index is next built anew, which costs needless candidates, never a hit.
//
// Keeping it current: SQLite tells this object of every row that the archive's connection
// inserts or deletes in the email table (the update hook), and a TEMP trigger of the
// connection of every message whose searched texts or id are set; neither changes the
// archive's schema or file. The ids of inserted and changed messages are noted, and their
// words are added to the side file in transactions of its own: while the event loop is idle
// and no store run is under way, and before a search (build). Ids still noted when the
// connection closes are kept in the side file and taken up at the next open; until their
// words are added, a search does not use the index. What the index (with those ids)
// describes is recorded as the archive's fingerprint (ArchiveFingerprint) when the connection
// closes, if no other connection has committed to the archive or to the side file since it
// opened (SQLite's data version): another Quillery on the same archive may have emptied the side
// file to build it anew.
// When the archive opens with another fingerprint, something that does not keep the index has
// changed it (another program, a restore, a crash before the fingerprint was written): the
// index is stale and is not used until it has been built anew.
//
// Nothing here ever makes an action on the archive fail: when the side file cannot be made,
// read or written, the index is off for the connection and every search runs as it always
// has.
class SearchIndex : public QObject {
  Q_OBJECT

 public:
  enum class State {
    Off,       // no side file, or it cannot be used: nothing is indexed or searched
    Stale,     // it does not describe the archive: it must be built anew before use
    Building,  // messages up to builtUpTo() are in it; the rest are still to be indexed
    Current,   // every message is in it (those noted since being added before use)
  };

  static bool isIndexedColumn(const QString& column);

  explicit SearchIndex(Archive& archive);
  ~SearchIndex() override;
  SearchIndex(const SearchIndex&) = delete;
  SearchIndex& operator=(const SearchIndex&) = delete;

  // After the archive has opened on the connection: opens the side file (making it when
  // missing) and compares its fingerprint with the archive's. Cheap: it reads a few rows.
  void attach();
  // Before the connection closes: a transaction left open is rolled back (as closing would),
  // and when no other connection has committed to the archive or the side file since it was
  // attached, the noted messages (still to be indexed) are kept in the side file with the
  // archive's fingerprint, so that the next open finds the index current but for them.
  void detach();
  // The archive at this path is about to be replaced by another file (a restore, an export or
  // a backup over it): the side file is removed, and this connection stops keeping it.
  void forget(const QString& archivePath);

  State state() const { return state_; }
  long long builtUpTo() const { return builtUpTo_; }

  // Whether a search may use the index now: it is current or being built, no message noted
  // is still to be added, and no other connection has committed to the archive or the side
  // file since they were last known to be in step. Called inside the transaction in which the
  // search then runs.
  bool usable();
  // Whether build() has work to do: the index is stale or not yet complete, messages noted
  // are still to be added, or it holds so many words of deleted and changed messages that
  // building it anew pays.
  bool needsBuilding() const;
  // Brings the index up to date: empties a stale one, adds the noted messages and indexes the
  // messages not yet in it, in transactions of a few thousand messages, showing
  // "Indexing..." with the count of indexed messages on the progress panel when there are
  // more than a few thousand. Between transactions the progress port may let events through
  // (keepResponsive) and stopRequested is asked; a stopped build keeps what it has done and
  // goes on from there the next time. Returns true when the index is current at the end.
  bool build(platform::Progress& progress, const std::function<bool()>& stopRequested = {});

  // Runs a candidate query over the side file's FTS5 tables (IndexFile::tableOf) and offers
  // its ids to the archive's connection as the table CandidateTable::kName. Answers their
  // number, or nothing when the query fails (the index is then off) or another Quillery has
  // written the side file meanwhile (the index is then stale).
  std::optional<std::size_t> prepareCandidates(const QString& query);
  // The words of the index's vocabulary that a message holding this run of a LIKE pattern
  // (WordTokenizer::likeRuns) may have given; nothing when the run narrows nothing.
  std::optional<QList<QByteArray>> wordsHolding(const QByteArray& run) {
    return file_.wordsHolding(run);
  }
  // The span of message ids when the archive was attached (highest - lowest + 1).
  long long messageSpan() const { return span_; }

  // A message inserted, deleted or changed (SQLITE_INSERT, SQLITE_DELETE or SQLITE_UPDATE)
  // on the archive's connection: SQLite's update hook and the trigger report them.
  void rowChanged(int operation, long long id);

 private:
  bool readState();
  bool keepsMessage(long long id) const;
  long long dataVersion();
  // Whether no other connection has written the side file since this one last read or wrote
  // what it holds: another Quillery may have emptied it to build it anew.
  bool fileInStep();
  // Adds up to `most` noted messages to the side file in its open transaction.
  bool addNoted(std::size_t most);
  // Indexes the next messages after builtUpTo_; done when there was none.
  bool indexBatch(long long& indexed, bool& done);
  bool startBuilding();
  void addNotedWhileIdle();
  // Stops keeping and using the index on this connection; the side file stays open for the
  // next connection to the same archive.
  void off();
  // Off, and the side file closed: it failed, or is to be removed.
  void fail();

  Archive& archive_;
  IndexFile file_;
  QString sidePath_;
  State state_ = State::Off;
  long long builtUpTo_ = 0;
  long long syncedDataVersion_ = -1;
  long long syncedFileVersion_ = -1;
  IndexFile::State stored_;
  long long span_ = 0;
  long long droppedSinceAttach_ = 0;
  std::vector<long long> noted_;
  std::vector<long long> candidates_;
  std::unique_ptr<IndexFeeder> feeder_;
  int addedSinceCommit_ = 0;
  // Whether the messages still to be added differ from those the side file keeps.
  bool pendingChanged_ = false;
  // While build() lets events through between its transactions.
  bool building_ = false;
  QTimer idleTimer_;
};

}  // namespace quillery::archive
