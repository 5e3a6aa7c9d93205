#pragma once

#include <QString>
#include <functional>

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Files;
class Progress;
}  // namespace quillery::platform

namespace quillery::maintenance {

// Copies the archive file, byte for byte, to a backup file that the user chooses.
class Backup {
 public:
  Backup(archive::Archive& archive, platform::Dialogs& dialogs, platform::Files& files,
         platform::Progress& progress);

  // The backup action. backupPath is the path held by the preferences; an empty one starts
  // from the archive path, and a path equal to the archive path becomes the archive path
  // followed by ".bak" (kept even when the user then cancels). The save panel "Back Up
  // Database" opens on the folder of backupPath and proposes its file name; the chosen file
  // becomes backupPath. An archive file that does not exist, a backup file in the way that
  // cannot be removed and a failing copy each end the action with their critical alert; on
  // success savePreferences is called (so the chosen path is kept) and "Backup is done" is
  // shown. The archive file is never changed, not even when it is chosen as its own backup
  // (that ends as a failing copy does); a failed copy leaves no partial backup behind
  // when Files::copy honours its contract. Returns true when the backup was made. While a
  // store run is under way nothing happens (the file is then in the middle of a transaction).
  bool backupDB(const QString& dbPath, QString& backupPath,
                const std::function<void()>& savePreferences);

 private:
  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  platform::Files& files_;
  platform::Progress& progress_;
};

}  // namespace quillery::maintenance
