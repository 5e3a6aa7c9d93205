#pragma once

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>

#include "ChosenMessages.h"
#include "archive/Archive.h"
#include "archive/Statements.h"
#include "archive/TestFiles.h"
#include "export/ExportPorts.h"
#include "search/ResultList.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"
#include "support/RecordingFiles.h"

namespace quillery::test {

// Every row of a query on a connection of the test's own, as a list of its columns.
inline QList<QStringList> tableOf(const QString& file, const QString& sql) {
  QList<QStringList> rows;
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK)
    sqlite3_exec(
        db, sql.toUtf8().constData(),
        [](void* context, int columns, char** values, char**) {
          QStringList row;
          for (int c = 0; c < columns; ++c)
            row.append(values[c] ? QString::fromUtf8(values[c]) : QString());
          static_cast<QList<QStringList>*>(context)->append(row);
          return 0;
        },
        &rows, nullptr);
  sqlite3_close(db);
  return rows;
}

}  // namespace quillery::test

namespace quillery::exporting {

using test::tableOf;

// An archive file in a temporary folder with the result list over it, as a search leaves
// them: the connection open and the list filled. Exports write into the same folder.
class ExportFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    archive.openDB(dbPath);
    ASSERT_FALSE(archive.openFailed);
  }

  // The chosen messages, all listed, message 7's email row then removed.
  void listChosenMessages() {
    ASSERT_EQ(test::ChosenMessages::insert(archive), QString());
    retrieve();
    ASSERT_EQ(list.listCount, test::ChosenMessages::kCount);
    ASSERT_EQ(test::ChosenMessages::removeLastEmailRow(archive), QString());
  }
  void retrieve(const QString& statement = archive::listAllStatement()) {
    archive.sqlText = statement;
    list.retrieve(dbPath);
    dialogs.alerts.clear();
    progress.events.clear();
  }
  // Shows the list reversed, as two clicks on the id column do.
  void showDescending() {
    list.clickColumn(QStringLiteral("emailID"));
    list.clickColumn(QStringLiteral("emailID"));
  }

  QString outputPath(const QString& name) const { return dir.filePath(name); }
  static QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  static QString expectedPath(const QString& name) {
    return QStringLiteral(QUILLERY_SOURCE_DIR "/tests/export/expected/") + name;
  }
  static QByteArray expected(const QString& name) { return bytesOf(expectedPath(name)); }
  // Compares bytes with an expected file. With QUILLERY_WRITE_EXPECTED set in the
  // environment the file is written instead, after a deliberate change of a format, to be
  // read over line by line before it is committed.
  static ::testing::AssertionResult matchesExpected(const QString& name, const QByteArray& bytes) {
    if (qEnvironmentVariableIsSet("QUILLERY_WRITE_EXPECTED")) {
      test::writeFile(expectedPath(name), bytes);
      return ::testing::AssertionSuccess();
    }
    const QByteArray wanted = expected(name);
    if (bytes == wanted)
      return ::testing::AssertionSuccess();
    qsizetype at = 0;
    while (at < bytes.size() && at < wanted.size() && bytes[at] == wanted[at])
      ++at;
    return ::testing::AssertionFailure()
           << name.toStdString() << " differs from byte " << at << ": got \""
           << bytes.mid(at, 80).toStdString() << "\", expected \""
           << wanted.mid(at, 80).toStdString() << '"';
  }
  QByteArray archiveDigest() const {
    return QCryptographicHash::hash(bytesOf(dbPath), QCryptographicHash::Sha256);
  }
  // True when the archive connection is left without an open transaction.
  bool noTransactionLeft() {
    const bool clean = archive.exec(QStringLiteral("BEGIN TRANSACTION")).ok();
    archive.exec(QStringLiteral("ROLLBACK TRANSACTION"));
    return clean;
  }

  QTemporaryDir dir;
  QString dbPath = dir.filePath(QStringLiteral("archive"));
  test::FakeDialogs dialogs;
  test::FakeProgress progress;
  test::RecordingFiles files;
  archive::Archive archive{dialogs, files};
  search::ResultList list{archive, dialogs, progress};
  ExportPorts ports{archive, list, dialogs, progress};
  QString exportPath;
};

}  // namespace quillery::exporting
