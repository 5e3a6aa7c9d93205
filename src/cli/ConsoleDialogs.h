#pragma once

#include <QSet>
#include <QString>

#include "platform/Dialogs.h"

namespace quillery::cli {

// Dialogs for a console: an alert is written to standard error as "Title: message" (the
// message alone when it has no title), every alert is answered with its first button, so a
// confirmation is a yes (and, taken as given, is not written), and every file panel is
// cancelled. Nothing waits for the user.
class ConsoleDialogs : public platform::Dialogs {
 public:
  int showAlert(const platform::Alert& alert) override;
  QString runSavePanel(const platform::SavePanel& panel) override;
  QStringList runOpenPanel(const platform::OpenPanel& panel) override;

  // Without confirmation a question (an alert with more than one button) is written as an
  // alert, answered with its last button ("Cancel") and remembered in declinedQuestion.
  void setConfirmed(bool confirmed) { confirmed_ = confirmed; }
  bool declinedQuestion() const { return declined_; }
  // Save panels are answered with this path; an empty one takes the file the panel proposes
  // (its folder and file name).
  void answerSavePanels(const QString& path) {
    answersSavePanels_ = true;
    savePanelAnswer_ = path;
  }
  // Informational alerts that ask nothing (the "done" reports) go to standard output.
  void reportResultsOnStandardOutput() { resultsOnStdout_ = true; }

  // Alerts with this title are answered but not written, for texts the caller prints itself.
  void silenceTitle(const QString& title) { silenced_.insert(title); }
  // The text of the last alert that ended an action (critical), empty when none was shown.
  const QString& lastCriticalMessage() const { return lastCritical_; }

 private:
  QSet<QString> silenced_;
  QString lastCritical_;
  bool confirmed_ = true;
  bool declined_ = false;
  bool answersSavePanels_ = false;
  QString savePanelAnswer_;
  bool resultsOnStdout_ = false;
};

}  // namespace quillery::cli
