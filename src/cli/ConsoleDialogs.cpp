#include "cli/ConsoleDialogs.h"

#include <cstdio>

namespace quillery::cli {

int ConsoleDialogs::showAlert(const platform::Alert& alert) {
  if (alert.style == platform::AlertStyle::Critical)
    lastCritical_ = alert.message;
  if (silenced_.contains(alert.title))
    return 0;
  const QString line =
      alert.title.isEmpty() ? alert.message : alert.title + QStringLiteral(": ") + alert.message;
  std::fputs(line.toUtf8().constData(), stderr);
  if (!line.endsWith(QLatin1Char('\n')))
    std::fputc('\n', stderr);
  std::fflush(stderr);
  return 0;
}

QString ConsoleDialogs::runSavePanel(const platform::SavePanel&) {
  return {};
}

QStringList ConsoleDialogs::runOpenPanel(const platform::OpenPanel&) {
  return {};
}

}  // namespace quillery::cli
