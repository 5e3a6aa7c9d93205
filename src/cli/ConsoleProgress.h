#pragma once

#include <QElapsedTimer>
#include <QString>

#include "platform/Progress.h"

namespace quillery::cli {

// Progress for a console, written to standard error.
// - Terminal: one line, rewritten in place with "\r", showing the title, the count and the
//   first line of the current item; it is cleared when the panel closes.
// - Lines: for logs and benchmarks, one line "<title> <count> <seconds>" whenever the count
//   reaches a multiple of lineStep, seconds counted from construction.
// - Quiet: nothing (the default when standard error is not a terminal).
class ConsoleProgress : public platform::Progress {
 public:
  enum class Mode { Quiet, Terminal, Lines };

  explicit ConsoleProgress(Mode mode, int lineStep = 1000);
  // Terminal when standard error is one, else Quiet.
  static Mode detectMode();

  void open(const QString& title) override;
  void setTitle(const QString& title) override;
  void showCount(const QString& text) override;
  void showItem(const QString& text) override;
  void setRunControlsVisible(bool, RunControls) override {}
  void close() override;

 private:
  void redraw();

  Mode mode_;
  int lineStep_;
  QElapsedTimer clock_;
  QString title_;
  QString count_;
  QString item_;
  bool lineShown_ = false;
};

}  // namespace quillery::cli
