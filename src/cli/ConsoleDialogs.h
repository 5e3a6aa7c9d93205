#pragma once

#include <QSet>
#include <QString>

#include "platform/Dialogs.h"

namespace quillery::cli {

// Dialogs for a console: an alert is written to standard error as "Title: message" (the
// message alone when it has no title), every alert is answered with its first button, so a
// confirmation is a yes, and every file panel is cancelled. Nothing waits for the user.
class ConsoleDialogs : public platform::Dialogs {
 public:
  int showAlert(const platform::Alert& alert) override;
  QString runSavePanel(const platform::SavePanel& panel) override;
  QStringList runOpenPanel(const platform::OpenPanel& panel) override;

  // Informational alerts (an export's "done") go to standard output from now on, as results.
  void informOnStandardOutput() { informOnStdout_ = true; }
  // Alerts with this title are answered but not written, for texts the caller prints itself.
  void silenceTitle(const QString& title) { silenced_.insert(title); }
  // The text of the last alert that ended an action (critical), empty when none was shown.
  const QString& lastCriticalMessage() const { return lastCritical_; }

 private:
  QSet<QString> silenced_;
  bool informOnStdout_ = false;
  QString lastCritical_;
};

}  // namespace quillery::cli
