#pragma once

#include <QList>
#include <QQueue>
#include <QStringList>
#include <functional>

#include "platform/Dialogs.h"

namespace quillery::test {

// A scripted Dialogs: alerts are answered from a queue of button indexes (defaultAnswer, the
// default button 0 unless changed, when the queue is empty), panels from queues of paths
// (cancel when empty). Every
// alert and panel shown is recorded so that a test can assert the exact texts.
class FakeDialogs : public platform::Dialogs {
 public:
  void setNextAnswer(int buttonIndex) { answers_.enqueue(buttonIndex); }
  void setNextFileName(const QString& path) { saveNames_.enqueue(path); }
  void setNextFileNames(const QStringList& paths) { openNames_.enqueue(paths); }

  int showAlert(const platform::Alert& alert) override {
    alerts.append(alert);
    // A real alert runs an event loop while it is open; a test can do the same here.
    if (whileShown)
      whileShown(alert);
    return answers_.isEmpty() ? defaultAnswer : answers_.dequeue();
  }
  QString runSavePanel(const platform::SavePanel& panel) override {
    savePanels.append(panel);
    return saveNames_.isEmpty() ? QString() : saveNames_.dequeue();
  }
  QStringList runOpenPanel(const platform::OpenPanel& panel) override {
    openPanels.append(panel);
    return openNames_.isEmpty() ? QStringList() : openNames_.dequeue();
  }

  // The messages of all alerts shown, in order, for compact assertions.
  QStringList messages() const {
    QStringList out;
    for (const auto& a : alerts)
      out.append(a.message);
    return out;
  }

  std::function<void(const platform::Alert&)> whileShown;
  int defaultAnswer = 0;
  QList<platform::Alert> alerts;
  QList<platform::SavePanel> savePanels;
  QList<platform::OpenPanel> openPanels;

 private:
  QQueue<int> answers_;
  QQueue<QString> saveNames_;
  QQueue<QStringList> openNames_;
};

}  // namespace quillery::test
