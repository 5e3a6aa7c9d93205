#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

namespace quillery::app {

// The progress panel's moving indicator: a block sliding to and fro along a track. Its
// position follows the time since start(), not a count of timer ticks, so a repaint forced
// while the main thread is busy (the panel's count redraw) shows it moved on; while the event
// loop runs, a timer repaints it smoothly.
class BusyIndicator : public QWidget {
  Q_OBJECT

 public:
  explicit BusyIndicator(QWidget* parent = nullptr);

  void start();
  void stop();
  bool isAnimating() const { return timer_.isActive(); }
  QSize sizeHint() const override { return {240, 12}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QTimer timer_;
  QElapsedTimer clock_;
};

}  // namespace quillery::app
