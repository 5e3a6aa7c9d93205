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
#include <QCoreApplication>
#include <QElapsedTimer>
#include <cstdio>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "export/ExportFormat.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"
#include "support/BenchPorts.h"

using namespace quillery;
using bench::peakMegabytes;
using bench::processorSeconds;

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
  bench::BenchDialogs dialogs;
  bench::SilentProgress progress;
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
