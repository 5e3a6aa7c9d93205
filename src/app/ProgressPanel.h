#pragma once

#include <QDialog>
#include <QElapsedTimer>

#include "platform/Progress.h"

class QLabel;
class QPushButton;

namespace quillery::app {

class BusyIndicator;

// The progress panel of long operations: a title, the moving indicator, the count and, during
// a store run, the message being stored and a cancel button. Work runs on the main thread, so
// every change is painted at once rather than when the event loop next runs; repaints closer
// together than a frame are left to the event loop, which keeps a list of a hundred thousand
// rows from spending its time on painting. The cancel button only emits cancelRequested.
class ProgressPanel : public QDialog, public platform::Progress {
  Q_OBJECT

 public:
  explicit ProgressPanel(QWidget* parent = nullptr);

  // The dialog's own open() stays reachable beside the port's open(title).
  using QDialog::open;

  void open(const QString& title) override;
  void setTitle(const QString& title) override;
  void showCount(const QString& text) override;
  void showItem(const QString& text) override;
  void setRunControlsVisible(bool visible, RunControls which) override;
  void close() override;

  BusyIndicator* indicator;
  QLabel* titleTextField;
  QLabel* progressTextField;
  QLabel* parseFileTextField;
  QPushButton* parseCancelButton;

 Q_SIGNALS:
  void cancelRequested();

 protected:
  // However the panel goes away (close(), Escape, the window's close box), the indicator stops.
  void hideEvent(QHideEvent* event) override;

 private:
  void repaintNow();

  QElapsedTimer lastRepaint_;
};

}  // namespace quillery::app
