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
  FILE* stream =
      informOnStdout_ && alert.style == platform::AlertStyle::Informational ? stdout : stderr;
  std::fputs(line.toUtf8().constData(), stream);
  if (!line.endsWith(QLatin1Char('\n')))
    std::fputc('\n', stream);
  std::fflush(stream);
  return 0;
}

QString ConsoleDialogs::runSavePanel(const platform::SavePanel&) {
  return {};
}

QStringList ConsoleDialogs::runOpenPanel(const platform::OpenPanel&) {
  return {};
}

}  // namespace quillery::cli
