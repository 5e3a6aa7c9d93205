#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "archive/TestFiles.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"

namespace quillery::search {

// A real archive file with messages put in by SQL, and the result list over it.
class ResultListFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    archive.openDB(dbPath);
    ASSERT_FALSE(archive.openFailed);
  }
  // Adds a message and returns its id.
  int add(const QString& date, const QString& subject, int numAttach = 0,
          const QString& from = QStringLiteral("ann@example.com")) {
    const archive::ExecResult result = archive.exec(
        QStringLiteral("INSERT INTO email (date_fld,from_fld,to_fld,subj_fld,mailbox,mailto,"
                       "body_fld,numAttach) VALUES('%1','%2','bob@example.com','%3','Inbox',"
                       "'ann@example.com','body',%4)")
            .arg(date, from, subject)
            .arg(numAttach));
    EXPECT_TRUE(result.ok()) << result.error.toStdString();
    return int(archive.lastInsertRowId());
  }
  void tag(int id) {
    archive.exec(QStringLiteral("INSERT INTO tags VALUES(%1,'Work','',0,'')").arg(id));
  }
  void retrieve(const QString& statement = archive::listAllStatement()) {
    archive.sqlText = statement;
    list.retrieve(dbPath);
  }
  // The subjects in display order.
  QStringList shownSubjects() const {
    QStringList out;
    for (int row = 0; row < list.emailRows.size(); ++row)
      out.append(list.rowAt(row).emailSubject());
    return out;
  }

  QTemporaryDir dir;
  QString dbPath = dir.filePath(QStringLiteral("archive"));
  test::FakeDialogs dialogs;
  test::FakeProgress progress;
  platform::QtFiles files;
  archive::Archive archive{dialogs, files};
  ResultList list{archive, dialogs, progress};
};

}  // namespace quillery::search
