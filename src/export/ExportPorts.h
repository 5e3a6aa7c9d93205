#pragma once

#include "export/ExportWriter.h"
#include "export/FileExportWriter.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform
namespace quillery::search {
class ResultList;
}

namespace quillery::exporting {

// What every export works with: the archive connection that the last search or store run
// left open (an export neither opens nor closes it), the result list it writes out, the
// ports it reports through and the way it opens its output file.
struct ExportPorts {
  archive::Archive& archive;
  const search::ResultList& list;
  platform::Dialogs& dialogs;
  platform::Progress& progress;
  WriterFactory openWriter = &FileExportWriter::open;
};

// How an export ended, for a caller that needs more than the alerts (quillery-cli's exit
// status): the user cancelled a panel, the export ran to its completion alert, or it was
// stopped by a failure that an alert named.
enum class ExportOutcome { Cancelled, Done, Failed };

}  // namespace quillery::exporting
