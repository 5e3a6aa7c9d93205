#pragma once

#include <QDialog>
#include <QElapsedTimer>
#include <functional>

#include "platform/Progress.h"

class QLabel;
class QPushButton;

namespace quillery::app {

class BusyIndicator;
class StorePanel;

// The progress of long operations: a panel with a title, the moving indicator and the count,
// and the run controls of the store panel (the count, the message being stored and the
// cancel button), which stay in the main window when the panel is closed. Work runs on the
// main thread, so every change is painted at once rather than when the event loop next runs;
// repaints closer together than a frame are left to the event loop, which keeps a list of a
// hundred thousand rows from spending its time on painting.
class ProgressPanel : public QDialog, public platform::Progress {
  Q_OBJECT

 public:
  // The store panel's progressTextField, parseFileTextField and parseCancelButton are the
  // run controls that showCount, showItem and setRunControlsVisible drive.
  ProgressPanel(StorePanel& runControls, QWidget* parent = nullptr);

  // The dialog's own open() stays reachable beside the port's open(title).
  using QDialog::open;

  void open(const QString& title) override;
  void setTitle(const QString& title) override;
  void showCount(const QString& text) override;
  void showItem(const QString& text) override;
  void setRunControlsVisible(bool visible, RunControls which) override;
  void close() override;
  // While a stop is offered the panel is application-modal, so that keepResponsive lets
  // through only the panel's own input: no other action can start while the work runs.
  void offerStop(std::function<void()> stop) override;
  void keepResponsive() override;

  BusyIndicator* indicator;
  QLabel* titleTextField;
  // The panel's own copy of the count, shown whatever the run controls show.
  QLabel* countTextField;
  // Shown while the work under way may be stopped.
  QPushButton* stopButton;

 protected:
  // However the panel goes away (close(), Escape, the window's close box), the indicator stops.
  void hideEvent(QHideEvent* event) override;

 private:
  void repaintNow();

  StorePanel& runControls_;
  std::function<void()> stop_;

  QElapsedTimer lastRepaint_;
};

}  // namespace quillery::app
