#include "archive/maintenance/Compaction.h"

#include "archive/Archive.h"
#include "archive/maintenance/ErrorLines.h"
#include "platform/Progress.h"

namespace quillery::maintenance {

Compaction::Compaction(archive::Archive& archive, platform::Progress& progress)
    : archive_(archive), progress_(progress) {}

bool Compaction::compactDB(const QString& dbPath) {
  if (archive_.storeRunUnderWay)
    return false;
  if (!archive_.openForAction(dbPath))
    return false;
  progress_.open(QStringLiteral("Compacting database..."));
  const archive::ExecResult result = archive_.exec(QStringLiteral("vacuum"));
  reportOnStandardError(result);
  progress_.close();
  return result.ok();
}

}  // namespace quillery::maintenance
