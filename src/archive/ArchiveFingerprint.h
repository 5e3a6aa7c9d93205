#pragma once

#include <QString>

struct sqlite3;

namespace quillery::archive {

// What identifies the contents of an archive file cheaply: SQLite's change counter and page
// count from the file's header (every program that commits a change to the file in rollback
// mode raises the counter), the lowest and highest message id and a hash of the headers of the
// messages with the highest ids (which tell apart two files whose counters happen to agree). The
// search index keeps the fingerprint of the archive that it describes; an archive whose fingerprint
// differs has been changed by something that did not keep the index.
struct ArchiveFingerprint {
  long long counter = 0;
  long long pages = 0;
  QString identity;
  // The lowest and highest message id; 0 and false when the archive holds no message.
  long long lowestId = 0;
  long long highestId = 0;
  bool hasMessages = false;
  // The file is in write-ahead-log mode, where the counter is not kept: no fingerprint can be
  // trusted.
  bool writeAheadLog = false;
  bool valid = false;

  bool operator==(const ArchiveFingerprint& other) const {
    return valid && other.valid && counter == other.counter && pages == other.pages &&
           identity == other.identity;
  }

  // Reads the fingerprint of the archive open on the connection ("main"). The caller holds a
  // transaction in which the archive has been read, so that no other program commits between
  // the reads; not valid when the header or the messages cannot be read.
  static ArchiveFingerprint read(sqlite3* connection);
};

}  // namespace quillery::archive
