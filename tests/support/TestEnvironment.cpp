#include "support/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>

namespace quillery::test {

QString toolsDir() {
  return QStringLiteral(QUILLERY_TOOLS_DIR);
}

QString toolPath(const QString& name) {
  return toolsDir() + QLatin1Char('/') + name;
}

QString corpusDir() {
  const QString fromEnv = qEnvironmentVariable("QUILLERY_CORPUS");
  const QString path =
      fromEnv.isEmpty() ? QStringLiteral(QUILLERY_SOURCE_DIR "/../shared/corpus") : fromEnv;
  return QFileInfo(path).isDir() ? QDir(path).canonicalPath() : QString();
}

}  // namespace quillery::test
