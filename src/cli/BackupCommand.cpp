#include "cli/BackupCommand.h"

#include <QFileInfo>

#include "archive/maintenance/Backup.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/MaintenanceSession.h"
#include "platform/qt/QtSettings.h"
#include "prefs/StoredPreferences.h"

namespace quillery::cli {

QString BackupCommand::synopsis() {
  return QStringLiteral("  quillery-cli backup [--archive PATH] [--to FILE]\n");
}

QString BackupCommand::help() {
  return QStringLiteral(
      "backup: copy the archive file to FILE (default: the last backup's path, else the\n"
      "archive's name followed by .bak beside it). A file already there is replaced. The\n"
      "path is kept as the window's backup path.\n");
}

int BackupCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QString argument;
  QString target;
  while (line.next(argument)) {
    if (takeCommonOption(line, argument, nullptr))
      continue;
    if (argument == QLatin1String("--to"))
      target = line.value(argument);
    else
      line.fail(QStringLiteral("unknown option '%1' for backup").arg(argument));
  }
  if (line.failed())
    return usageError(line.error());

  MaintenanceSession session(true);
  platform::QtSettings settings;
  prefs::StoredPreferences values;
  values.readDbPath(settings);
  values.read(settings);
  // No panel to choose in: the --to file, else the file the panel would propose.
  session.dialogs.answerSavePanels(target.isEmpty() ? QString()
                                                    : QFileInfo(target).absoluteFilePath());
  maintenance::Backup backup(session.archive, session.dialogs, session.files, session.progress);
  const bool done = backup.backupDB(line.archivePath(), values.backupPath, [&] {
    values.write(settings, prefs::StoredPreferences::storedCategories(settings));
  });
  return session.exitCode(done, QStringLiteral("backup"));
}

}  // namespace quillery::cli
