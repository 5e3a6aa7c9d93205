#pragma once

#include "archive/Archive.h"
#include "cli/ConsoleDialogs.h"
#include "cli/ConsoleProgress.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"

namespace quillery::cli {

// What the commands that look after the archive file share: the console ports, the archive
// and the result list of one run, and how the run's outcome becomes the exit code. Questions
// are answered yes only when the user gave --yes; the "done" reports go to standard output
// and every other alert to standard error.
struct MaintenanceSession {
  explicit MaintenanceSession(bool confirmed);

  // kOk when the action was done and no alert reported an error, else kFailed; a question
  // that was declined for want of --yes is named on standard error.
  int exitCode(bool done, const QString& command) const;

  ConsoleDialogs dialogs;
  ConsoleProgress progress{ConsoleProgress::detectMode()};
  platform::QtFiles files;
  archive::Archive archive{dialogs, files};
  search::ResultList list{archive, dialogs, progress};
};

// Reads the options every maintenance command knows (--archive and, where yes is given,
// --yes) from argument; false when it is none of them.
class CommandLine;
bool takeCommonOption(CommandLine& line, const QString& argument, bool* yes);

}  // namespace quillery::cli
