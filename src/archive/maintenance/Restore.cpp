#include "archive/maintenance/Restore.h"

#include <sqlite3.h>

#include "archive/Archive.h"
#include "archive/OpenCheck.h"
#include "platform/Dialogs.h"
#include "platform/Files.h"
#include "platform/Progress.h"

namespace quillery::maintenance {

Restore::Restore(archive::Archive& archive, platform::Dialogs& dialogs, platform::Files& files,
                 platform::Progress& progress)
    : archive_(archive), dialogs_(dialogs), files_(files), progress_(progress) {}

bool Restore::restoreDB(const QString& dbPath, const QString& backupPath) {
  if (archive_.storeRunUnderWay)
    return false;
  if (!files_.exists(dbPath)) {
    dialogs_.critical(QStringLiteral("You have not specified a database file."),
                      QStringLiteral("Go to Setup to create a database file."));
    return false;
  }
  if (!files_.exists(backupPath)) {
    dialogs_.critical(QStringLiteral("You do not have a backup file."),
                      QStringLiteral("Go to Backup Database to create a backup file."));
    return false;
  }
  if (!checkBackupOpens(backupPath))
    return false;
  const int answer = dialogs_.showAlert(
      {platform::AlertStyle::Informational,
       QStringLiteral("Restore Database"),
       QStringLiteral("Do you want to restore:\n%1\nFrom:\n%2?").arg(dbPath, backupPath),
       {QStringLiteral("Restore"), QStringLiteral("Cancel")}});
  if (answer != 0)
    return false;
  // The backup may have gone while the question was open.
  if (!files_.exists(backupPath)) {
    dialogs_.critical(QStringLiteral("Restore failed"),
                      QStringLiteral("%1 does not exist.").arg(backupPath));
    return false;
  }
  progress_.open(QStringLiteral("Restoring..."));
  // The search index describes the archive that is about to go.
  archive_.searchIndex().forget(dbPath);
  files_.remove(dbPath);
  const bool copied = files_.copy(backupPath, dbPath);
  progress_.close();
  if (!copied) {
    dialogs_.critical(QStringLiteral("Restore failed"),
                      QStringLiteral("Unable to copy %1 to %2").arg(backupPath, dbPath));
    return false;
  }
  dialogs_.inform(QStringLiteral("Done restoring database"),
                  QStringLiteral("Copied %1 to %2").arg(backupPath, dbPath));
  return true;
}

bool Restore::checkBackupOpens(const QString& backupPath) {
  const archive::ExecResult opened = archive::openCheck(backupPath);
  if (opened.ok())
    return true;
  if (opened.code == SQLITE_NOTADB || opened.code == SQLITE_CORRUPT) {
    dialogs_.critical(QStringLiteral("Restore Failed"),
                      QStringLiteral("This backup file is not a valid database file."));
  } else {
    dialogs_.critical(QString(),
                      QStringLiteral("SQL Error: %1 %2").arg(opened.code).arg(opened.error));
  }
  return false;
}

}  // namespace quillery::maintenance
