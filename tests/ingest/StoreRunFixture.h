#pragma once

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTemporaryDir>
#include <ctime>
#include <memory>

#include "archive/Archive.h"
#include "archive/TestFiles.h"
#include "ingest/StorePreparation.h"
#include "ingest/StoreRun.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"
#include "support/TestEnvironment.h"

namespace quillery::ingest {

// A store run over real objects: a real archive file in a temporary folder, the real result
// list and, unless a test says otherwise, the real parser tool of the build.
class StoreRunFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    // The tool writes dates in local time; fixing the zone makes them predictable.
    qputenv("TZ", "UTC");
    tzset();
    makeRun(test::toolPath(QStringLiteral("domail")));
  }

  // A new run with this tool, and a new preparation for it.
  void makeRun(const QString& tool, CommitInterval interval = {}) {
    preparation.reset();
    run = std::make_unique<StoreRun>(archive, list, message, counters, dialogs, progress, tool,
                                     interval);
    preparation = std::make_unique<StorePreparation>(archive, dialogs, counters, *run);
  }

  QString dbPath() const { return dir.filePath(QStringLiteral("archive")); }

  static StoreSwitches allOn() { return {false, true, true, false, true, false}; }

  // Starts the run and waits for its end; returns the summary ("" when it did not start).
  QString runToEnd(const StoreSwitches& switches, const StoreSources& sources = {},
                   const StoreDateRange& dates = {}) {
    QSignalSpy finished(run.get(), &StoreRun::finished);
    const std::optional<StoreRequest> request =
        preparation->prepareRun(dbPath(), switches, dates, sources);
    if (!request || !run->start(*request))
      return {};
    if (finished.isEmpty() && !finished.wait(120000))
      return QStringLiteral("(the run did not end)");
    return finished.first().first().toString();
  }

  QString storeMbox(const QStringList& files, const StoreSwitches& switches = allOn()) {
    preparation->useMboxFiles(files);
    return runToEnd(switches);
  }

  // The rows of a query on a connection of the test's own, columns joined by '|'.
  QStringList rows(const QString& sql) const { return test::rowsOf(dbPath(), sql); }
  QString scalar(const QString& sql) const { return rows(sql).value(0); }
  int count(const QString& sql) const { return scalar(sql).toInt(); }

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
  test::FakeProgress progress;
  platform::QtFiles files;
  archive::Archive archive{dialogs, files};
  search::ResultList list{archive, dialogs, progress};
  CurrentMessage message;
  StoreRunCounters counters;
  std::unique_ptr<StoreRun> run;
  std::unique_ptr<StorePreparation> preparation;
};

}  // namespace quillery::ingest
