#include "cli/MaintenanceSession.h"

#include "cli/CommandLine.h"
#include "cli/Console.h"

namespace quillery::cli {

MaintenanceSession::MaintenanceSession(bool confirmed) {
  dialogs.setConfirmed(confirmed);
  dialogs.reportResultsOnStandardOutput();
}

int MaintenanceSession::exitCode(bool done, const QString& command) const {
  if (dialogs.declinedQuestion()) {
    print(stderr, QStringLiteral("quillery-cli: %1 was not confirmed: give --yes to go ahead\n")
                      .arg(command));
    return kFailed;
  }
  return done && dialogs.lastCriticalMessage().isEmpty() ? kOk : kFailed;
}

bool takeCommonOption(CommandLine& line, const QString& argument, bool* yes) {
  if (line.takeArchive(argument))
    return true;
  if (yes != nullptr && argument == QLatin1String("--yes")) {
    *yes = true;
    return true;
  }
  return false;
}

}  // namespace quillery::cli
