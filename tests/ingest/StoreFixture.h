#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "archive/Archive.h"
#include "archive/TestFiles.h"
#include "ingest/EmailStore.h"
#include "ingest/RecordReader.h"
#include "ingest/StoreLog.h"
#include "platform/qt/QtFiles.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"

namespace quillery::ingest {

// The reader and the storing step over a real archive file in a temporary folder, with the
// store log and the raw file where a store run keeps them.
class StoreFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    archive.openDB(paths.dbPath);
    ASSERT_FALSE(archive.openFailed);
    storeLog.open(paths.storeLog);
    store.beginRun(paths);
    store.setOrigState(false);
  }

  // Runs SQL on the archive's own connection; the test fails when it does not succeed.
  void sql(const QString& statement) {
    const archive::ExecResult result = archive.exec(statement);
    ASSERT_TRUE(result.ok()) << result.error.toStdString();
  }
  // The rows of a query, its columns joined by '|', read on a connection of the test's own;
  // value() is the last row, "" when there is none.
  QStringList rows(const QString& query) const { return test::rowsOf(paths.dbPath, query); }
  QString value(const QString& query) const {
    const QStringList all = rows(query);
    return all.isEmpty() ? QString() : all.last();
  }
  int number(const QString& query) { return value(query).toInt(); }

  static void writeFile(const QString& path, const QByteArray& bytes) {
    ASSERT_TRUE(test::writeFile(path, bytes));
  }
  QString storeLogText() const { return test::readFile(paths.storeLog); }

  // A record as the parser tool writes it, with these lines between the headers and the end.
  static QString record(const QString& subject, const QString& rest,
                        const QString& date = QStringLiteral("2020-03-04 05:06:07")) {
    return QStringLiteral(
               "MAILBOX: Box\nFROM: Ann <ann@example.com> \nTO:bob@example.com\n"
               "SUBJECT:") +
           subject + QStringLiteral("\nDATE:") + date +
           QStringLiteral("\nMAILTO:ann@example.com\n") + rest + QStringLiteral("ENDOFEMAIL:\n");
  }

  QTemporaryDir dir;
  StorePaths paths = StorePaths::forArchive(dir.filePath(QStringLiteral("archive")));
  test::FakeDialogs dialogs;
  test::FakeProgress progress;
  platform::QtFiles files;
  archive::Archive archive{dialogs, files};
  CurrentMessage message;
  StoreRunCounters counters;
  StoreLog storeLog;
  // The messages the reader has counted, one per "FROM:" line.
  int messagesCounted = 0;
  EmailStore store{archive, message, counters, storeLog, dialogs, progress};
  RecordReader reader{store, message, counters, [this] { ++messagesCounted; }};
};

}  // namespace quillery::ingest
