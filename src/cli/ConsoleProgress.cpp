#include "cli/ConsoleProgress.h"

#include <unistd.h>

#include <cstdio>

namespace quillery::cli {

namespace {
constexpr int kTerminalWidth = 79;
}

ConsoleProgress::ConsoleProgress(Mode mode, int lineStep)
    : mode_(mode), lineStep_(lineStep > 0 ? lineStep : 1000) {
  clock_.start();
}

ConsoleProgress::Mode ConsoleProgress::detectMode() {
  return isatty(STDERR_FILENO) ? Mode::Terminal : Mode::Quiet;
}

void ConsoleProgress::open(const QString& title) {
  title_ = title;
  count_.clear();
  redraw();
}

void ConsoleProgress::setTitle(const QString& title) {
  title_ = title;
  redraw();
}

void ConsoleProgress::showCount(const QString& text) {
  count_ = text;
  if (mode_ == Mode::Lines) {
    if (text.toInt() % lineStep_ == 0 && text.toInt() != 0)
      std::fprintf(stderr, "%s %s %.3f\n", title_.toUtf8().constData(), text.toUtf8().constData(),
                   clock_.nsecsElapsed() / 1e9);
    return;
  }
  redraw();
}

void ConsoleProgress::showItem(const QString& text) {
  // The tool names the file and the subject on two lines; one line has room for the first.
  item_ = text.section(QLatin1Char('\n'), 0, 0);
  redraw();
}

void ConsoleProgress::close() {
  if (mode_ == Mode::Terminal && lineShown_) {
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    lineShown_ = false;
  }
}

void ConsoleProgress::redraw() {
  if (mode_ != Mode::Terminal)
    return;
  QString line = title_;
  if (!count_.isEmpty())
    line += QLatin1Char(' ') + count_;
  if (!item_.isEmpty())
    line += QStringLiteral("  ") + item_;
  if (line.size() > kTerminalWidth)
    line = line.left(kTerminalWidth - 3) + QStringLiteral("...");
  std::fprintf(stderr, "\r%s\033[K", line.toUtf8().constData());
  std::fflush(stderr);
  lineShown_ = true;
}

}  // namespace quillery::cli
