#include "cli/ConsoleDialogs.h"

#include <cstdio>

namespace quillery::cli {

int ConsoleDialogs::showAlert(const platform::Alert& alert) {
  const bool critical = alert.style == platform::AlertStyle::Critical;
  if (critical)
    lastCritical_ = alert.message;
  const bool question = alert.buttons.size() > 1;
  // A question answered yes is taken as given; one declined is shown with why it stopped.
  const bool declined = question && !confirmed_;
  if (!silenced_.contains(alert.title) && (!question || declined)) {
    const QString line =
        alert.title.isEmpty() ? alert.message : alert.title + QStringLiteral(": ") + alert.message;
    FILE* stream = resultsOnStdout_ && !critical && !question ? stdout : stderr;
    std::fputs(line.toUtf8().constData(), stream);
    if (!line.endsWith(QLatin1Char('\n')))
      std::fputc('\n', stream);
    std::fflush(stream);
  }
  if (declined) {
    declined_ = true;
    return int(alert.buttons.size()) - 1;
  }
  return 0;
}

QString ConsoleDialogs::runSavePanel(const platform::SavePanel& panel) {
  if (!answersSavePanels_)
    return {};
  if (!savePanelAnswer_.isEmpty())
    return savePanelAnswer_;
  return panel.directory + QLatin1Char('/') + panel.fileName;
}

QStringList ConsoleDialogs::runOpenPanel(const platform::OpenPanel&) {
  return {};
}

}  // namespace quillery::cli
