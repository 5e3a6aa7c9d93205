#pragma once

// What the benchmark programs share: ports that show nothing and wait for nobody, and the
// process's own figures.
#include <sys/resource.h>

#include <QString>
#include <QStringList>
#include <cstdio>

#include "platform/Dialogs.h"
#include "platform/Progress.h"

namespace quillery::bench {

// Every alert answered with its first button, a critical one also written to standard error
// (a benchmark that fails says why); every file panel cancelled.
class BenchDialogs : public platform::Dialogs {
 public:
  int showAlert(const platform::Alert& alert) override {
    if (alert.style == platform::AlertStyle::Critical)
      std::fprintf(stderr, "alert: %s\n", qPrintable(alert.message));
    return 0;
  }
  QString runSavePanel(const platform::SavePanel&) override { return {}; }
  QStringList runOpenPanel(const platform::OpenPanel&) override { return {}; }
};

class SilentProgress : public platform::Progress {
 public:
  void open(const QString&) override {}
  void setTitle(const QString&) override {}
  void showCount(const QString&) override {}
  void showItem(const QString&) override {}
  void setRunControlsVisible(bool, RunControls) override {}
  void close() override {}
};

// The peak resident memory of the process so far, in megabytes.
inline double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024.0;
}

// Processor seconds (user and system) of this process (RUSAGE_SELF) or of its ended children
// (RUSAGE_CHILDREN): unlike the wall clock they do not depend on what else the machine runs.
inline double processorSeconds(int who = RUSAGE_SELF) {
  rusage usage{};
  getrusage(who, &usage);
  const auto seconds = [](const timeval& t) { return double(t.tv_sec) + t.tv_usec / 1e6; };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

}  // namespace quillery::bench
