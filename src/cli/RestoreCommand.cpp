#include "cli/RestoreCommand.h"

#include <QFileInfo>

#include "archive/maintenance/Restore.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "cli/MaintenanceSession.h"
#include "platform/qt/QtSettings.h"
#include "prefs/StoredPreferences.h"

namespace quillery::cli {

QString RestoreCommand::synopsis() {
  return QStringLiteral("  quillery-cli restore [--archive PATH] [--from FILE] [--yes]\n");
}

QString RestoreCommand::help() {
  return QStringLiteral(
      "restore: replace the archive file by a copy of FILE (default: the window's backup\n"
      "path). Asks first: without --yes nothing is changed and the exit status is 1.\n");
}

int RestoreCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QString argument;
  QString from;
  bool yes = false;
  while (line.next(argument)) {
    if (takeCommonOption(line, argument, &yes))
      continue;
    if (argument == QLatin1String("--from"))
      from = QFileInfo(line.value(argument)).absoluteFilePath();
    else
      line.fail(QStringLiteral("unknown option '%1' for restore").arg(argument));
  }
  if (line.failed())
    return usageError(line.error());

  MaintenanceSession session(yes);
  if (from.isEmpty()) {
    const platform::QtSettings settings;
    prefs::StoredPreferences values;
    values.read(settings);
    from = values.backupPath;
  }
  maintenance::Restore restore(session.archive, session.dialogs, session.files, session.progress);
  const bool done = restore.restoreDB(line.archivePath(), from);
  return session.exitCode(done, QStringLiteral("restore"));
}

}  // namespace quillery::cli
