#pragma once

#include <QString>

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Progress;
}

namespace quillery::maintenance {

// Rebuilds the archive file in place to give back the space of deleted messages.
class Compaction {
 public:
  Compaction(archive::Archive& archive, platform::Progress& progress);

  // The compaction action: opens the archive with openDB (a file that fails to open, or one
  // of the old format, has shown openDB's alert; openFailed is cleared and nothing is run),
  // then runs "vacuum" on the shared connection under the progress panel "Compacting
  // database...". A failing vacuum is written to standard error as "SQL error: %s\n" and
  // leaves the file as it was. The connection stays open. Returns true when vacuum ran
  // through. While a store run is under way nothing happens.
  bool compactDB(const QString& dbPath);

 private:
  archive::Archive& archive_;
  platform::Progress& progress_;
};

}  // namespace quillery::maintenance
