#pragma once

#include <gtest/gtest.h>

#include <QCryptographicHash>
#include <QFile>
#include <QTemporaryDir>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "archive/TestFiles.h"
#include "export/ExportFormat.h"
#include "search/ResultList.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"
#include "support/RecordingFiles.h"
#include "support/TestEnvironment.h"

namespace quillery::exporting {

using test::bytesOf;
using test::tableOf;

// An archive file in a temporary folder with the result list over it, as a search leaves
// them: the connection open and the list filled. Exports write into the same folder.
class ExportFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    archive.openDB(dbPath);
    ASSERT_FALSE(archive.openFailed);
  }

  // The messages of chosen-messages.sql, all listed, message 7's email row then removed.
  void listChosenMessages() {
    const QByteArray sql = bytesOf(QUILLERY_SOURCE_DIR "/tests/export/chosen-messages.sql");
    ASSERT_TRUE(archive.exec(QString::fromUtf8(sql)).ok());
    retrieve();
    ASSERT_TRUE(archive.exec("DELETE FROM email WHERE id=7").ok());
  }
  void retrieve(const QString& statement = archive::listAllStatement()) {
    archive.sqlText = statement;
    list.retrieve(dbPath);
    dialogs.alerts.clear();
  }
  // Exports the list into a file of that name in the test's folder.
  ExportOutcome run(ExportFormat format, const QString& name, int firstId = 1000,
                    bool origState = true) {
    return exportList(ports, {format, outputPath(name), firstId, origState});
  }
  QString outputPath(const QString& name) const { return dir.filePath(name); }

  // Compares bytes with an expected file. With QUILLERY_WRITE_EXPECTED set in the
  // environment the file is written instead, after a deliberate change of a format, to be
  // read over line by line before it is committed.
  static ::testing::AssertionResult matchesExpected(const QString& name, const QByteArray& bytes) {
    const QString path = QStringLiteral(QUILLERY_SOURCE_DIR "/tests/export/expected/") + name;
    if (qEnvironmentVariableIsSet("QUILLERY_WRITE_EXPECTED") && test::writeFile(path, bytes))
      return ::testing::AssertionSuccess();
    const QByteArray wanted = bytesOf(path);
    qsizetype at = 0;
    while (at < bytes.size() && at < wanted.size() && bytes[at] == wanted[at])
      ++at;
    if (bytes == wanted)
      return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << name.toStdString() << " differs from byte " << at << ": \""
           << bytes.mid(at, 80).toStdString() << "\" where \"" << wanted.mid(at, 80).toStdString()
           << "\" was expected";
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
