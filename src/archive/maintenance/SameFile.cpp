#include "archive/maintenance/SameFile.h"

#include <QFileInfo>

namespace quillery::maintenance {

bool isSameFile(const QString& first, const QString& second) {
  if (first == second)
    return true;
  const QFileInfo a(first);
  const QFileInfo b(second);
  return a.exists() && b.exists() && a.canonicalFilePath() == b.canonicalFilePath();
}

}  // namespace quillery::maintenance
