#pragma once

#include <QString>

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Files;
class Progress;
}  // namespace quillery::platform

namespace quillery::maintenance {

// Copies the backup file back over the archive file.
class Restore {
 public:
  Restore(archive::Archive& archive, platform::Dialogs& dialogs, platform::Files& files,
          platform::Progress& progress);

  // The restore action. A missing archive file or backup file ends it with its critical
  // alert. The backup file is then opened by SQLite on a connection of its own, which only
  // refuses what cannot be opened at all ("SQL Error: %d %s", or "Restore Failed" for a
  // file SQLite calls no database); a text file passes, is copied, and the next open of the
  // archive reports it. After the user confirms ("Restore Database"), the archive file is
  // removed and the backup copied in its place: "Done restoring database" on success,
  // "Restore failed" when the copy fails, which leaves no archive file at the path (the
  // backup file is never changed). The archive's search index is removed before the copy
  // (the next search builds it for the restored file). The shared connection is left as it
  // was. Returns true when the backup was copied. While a store run is under way nothing
  // happens.
  bool restoreDB(const QString& dbPath, const QString& backupPath);

 private:
  bool checkBackupOpens(const QString& backupPath);

  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  platform::Files& files_;
  platform::Progress& progress_;
};

}  // namespace quillery::maintenance
