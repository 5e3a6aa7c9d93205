// export-bench: lists every message of an archive through the result list and exports the
// list in one format, as quillery-cli export does, timing the two steps apart and reporting
// the peak memory of the process after each.
//
//   export-bench ARCHIVE FORMAT OUTPUT
//
// FORMAT is mbox, sql, archive, tab, text, source or list. One line goes to standard output:
//   FORMAT N messages: listed in S s, exported in S s = R messages/s; peak RSS A MB after
//   listing, B MB after exporting
// Exit status 0, or 1 when the archive cannot be opened or the export fails.
#include <sys/resource.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "export/ExportFormat.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"

namespace {

using namespace quillery;

// Alerts on standard error; every panel cancelled.
class BenchDialogs : public platform::Dialogs {
 public:
  int showAlert(const platform::Alert& alert) override {
    std::fprintf(stderr, "%s\n", alert.message.toUtf8().constData());
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

double peakMegabytes() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss / 1024.0;
}

// Processor time (user and system) so far: unlike the wall clock, it does not depend on what
// else the machine runs.
double processorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_utime.tv_sec + usage.ru_stime.tv_sec +
         (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  if (argc != 4) {
    std::fputs("usage: export-bench ARCHIVE FORMAT OUTPUT\n", stderr);
    return 2;
  }
  const QString path = QString::fromLocal8Bit(argv[1]);
  const std::optional<exporting::ExportFormat> format =
      exporting::exportFormatNamed(QString::fromLocal8Bit(argv[2]));
  if (!format) {
    std::fputs("export-bench: unknown format\n", stderr);
    return 2;
  }
  BenchDialogs dialogs;
  SilentProgress progress;
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  archive.openDB(path);
  if (archive.openFailed)
    return 1;
  QElapsedTimer clock;
  clock.start();
  archive.sqlText = archive::listAllStatement();
  list.retrieve(path);
  const double listed = clock.nsecsElapsed() / 1e9;
  const double afterListing = peakMegabytes();
  clock.restart();
  const double processorBefore = processorSeconds();
  exporting::ExportPorts ports{archive, list, dialogs, progress};
  const auto outcome =
      exporting::exportList(ports, {*format, QString::fromLocal8Bit(argv[3]), 1, true});
  const double exported = clock.nsecsElapsed() / 1e9;
  const double processor = processorSeconds() - processorBefore;
  std::printf(
      "%s %d messages: listed in %.2f s, exported in %.2f s = %.0f messages/s "
      "(processor time %.2f s = %.0f messages/s); peak RSS %.1f MB after listing, "
      "%.1f MB after exporting\n",
      argv[2], list.listCount, listed, exported, list.listCount / exported, processor,
      list.listCount / processor, afterListing, peakMegabytes());
  return outcome == exporting::ExportOutcome::Done ? 0 : 1;
}
