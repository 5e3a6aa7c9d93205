#include "archive/maintenance/ErrorLines.h"

#include <cstdio>

namespace quillery::maintenance {

void writeToStandardError(const QString& text) {
  std::fputs(text.toUtf8().constData(), stderr);
  std::fflush(stderr);
}

void reportOnStandardError(const archive::ExecResult& result) {
  if (!result.ok())
    writeToStandardError(QStringLiteral("SQL error: %1\n").arg(result.error));
}

}  // namespace quillery::maintenance
