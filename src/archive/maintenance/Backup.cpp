#include "archive/maintenance/Backup.h"

#include <QFileInfo>

#include "archive/Archive.h"
#include "archive/SearchIndex.h"
#include "archive/maintenance/SameFile.h"
#include "platform/Dialogs.h"
#include "platform/Files.h"
#include "platform/Progress.h"

namespace quillery::maintenance {

Backup::Backup(archive::Archive& archive, platform::Dialogs& dialogs, platform::Files& files,
               platform::Progress& progress)
    : archive_(archive), dialogs_(dialogs), files_(files), progress_(progress) {}

bool Backup::backupDB(const QString& dbPath, QString& backupPath,
                      const std::function<void()>& savePreferences) {
  if (archive_.storeRunUnderWay)
    return false;
  if (backupPath.isEmpty())
    backupPath = dbPath;
  QString proposedName = QFileInfo(backupPath).fileName();
  // A first backup is proposed beside the archive, never as the archive itself.
  if (backupPath == dbPath) {
    proposedName += QLatin1String(".bak");
    backupPath += QLatin1String(".bak");
  }
  platform::SavePanel panel;
  panel.title = QStringLiteral("Back Up Database");
  panel.directory = QFileInfo(backupPath).absolutePath();
  panel.fileName = proposedName;
  const QString chosen = dialogs_.runSavePanel(panel);
  if (chosen.isEmpty())
    return false;
  backupPath = chosen;

  if (!files_.exists(dbPath)) {
    dialogs_.critical(QStringLiteral("Backup failed"),
                      QStringLiteral("%1 does not exist.").arg(dbPath));
    return false;
  }
  progress_.open(QStringLiteral("Copying..."));
  // The archive chosen as its own backup would be removed before a copy that cannot be
  // made: the user hears of the copy that cannot be made, and the archive stays.
  if (isSameFile(dbPath, backupPath)) {
    progress_.close();
    dialogs_.critical(QStringLiteral("Backup failed"),
                      QStringLiteral("Unable to copy %1 to %2").arg(dbPath, backupPath));
    return false;
  }
  if (files_.exists(backupPath) && !files_.remove(backupPath)) {
    progress_.close();
    // The message names no path: its text has no place for one.
    dialogs_.critical(QString(), QStringLiteral("Unable to remove @"));
    return false;
  }
  // A search index left beside the file replaced would pass for the copy's: the copy's
  // fingerprint may be the one the replaced file had.
  archive_.searchIndex().forget(backupPath);
  if (!files_.copy(dbPath, backupPath)) {
    progress_.close();
    dialogs_.critical(QStringLiteral("Backup failed"),
                      QStringLiteral("Unable to copy %1 to %2").arg(dbPath, backupPath));
    return false;
  }
  savePreferences();
  progress_.close();
  dialogs_.inform(QStringLiteral("Backup is done"),
                  QStringLiteral("Copied From:\n%1\nTo:\n%2").arg(dbPath, backupPath));
  return true;
}

}  // namespace quillery::maintenance
