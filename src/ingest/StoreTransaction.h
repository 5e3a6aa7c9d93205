#pragma once

#include <QElapsedTimer>

namespace quillery::archive {
class Archive;
}

namespace quillery::ingest {

class StoreLog;

// How much a store run killed hard may lose: this many whole messages or this much time,
// whichever is over first. A commit costs a few disk flushes, so the interval keeps them to a
// handful per second at the most.
struct CommitInterval {
  int messages = 2000;
  qint64 milliseconds = 2000;
};

// The transaction that a store run holds open on the archive connection from its start to
// its end. Underneath it is committed at intervals, always between two whole messages, so a
// run killed hard (power loss, kill -9, a crash) keeps everything stored up to its last
// interval; the connection is never without the run's transaction meanwhile, so whatever
// reads through it (Archive::storeRunUnderWay) sees the run as before. A failing BEGIN or
// COMMIT is written to the store log as "SQL error: %s\n" and the run goes on.
class StoreTransaction {
 public:
  StoreTransaction(archive::Archive& archive, StoreLog& storeLog, CommitInterval interval = {});

  // "BEGIN TRANSACTION" on the open connection; the archive's storeRunUnderWay is raised.
  void begin();
  // Counts a whole message done (stored or not) and commits when the interval is over.
  void messageDone();
  // Commits when a message has been done since the last commit and the interval's time is
  // over: for the pauses of the tool, when no message comes to call messageDone. Must be
  // called between two messages only.
  void commitIfDue();
  // "COMMIT TRANSACTION", keeping everything stored; storeRunUnderWay is lowered. Does
  // nothing when the transaction has not begun or has ended.
  void end();
  bool isOpen() const { return open_; }

 private:
  // COMMIT and BEGIN again.
  void commitAndBegin();
  void run(const char* statement);

  archive::Archive& archive_;
  StoreLog& storeLog_;
  CommitInterval interval_;
  bool open_ = false;
  int messagesSinceCommit_ = 0;
  QElapsedTimer sinceCommit_;
};

}  // namespace quillery::ingest
