#include "archive/Archive.h"
#include "archive/OpenCheck.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "archive/TestFiles.h"
#include "support/FakeDialogs.h"
#include "support/RecordingFiles.h"

namespace quillery::archive {
namespace {

class ArchiveTest : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return dir.filePath(name); }
  // The tables of a file with their CREATE texts, read on a connection of their own.
  static QStringList tables(const QString& file) {
    return test::rowsOf(file, "SELECT name, sql FROM sqlite_master WHERE type='table' ORDER BY 1");
  }
  // Opens the file and hands back the alerts it showed, each as "title|message"; every one
  // must be critical, and the open counts as failed exactly when there was one.
  QStringList alertsOpening(const QString& file) {
    archive.openFailed = false;
    dialogs.alerts.clear();
    archive.openDB(file);
    QStringList shown;
    for (const platform::Alert& alert : dialogs.alerts) {
      EXPECT_EQ(alert.style, platform::AlertStyle::Critical) << alert.message.toStdString();
      shown.append(alert.title + '|' + alert.message);
    }
    EXPECT_EQ(archive.openFailed, !shown.isEmpty());
    return shown;
  }

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
  test::RecordingFiles files;
  Archive archive{dialogs, files};
};

TEST_F(ArchiveTest, ANewPathGetsTheFourTablesOfTheArchiveFormatAndIsStamped) {
  const QString file = path(QStringLiteral("new archive"));
  EXPECT_EQ(alertsOpening(file), QStringList());
  EXPECT_TRUE(archive.isOpen());
  EXPECT_EQ(
      tables(file),
      (QStringList{
          "attachments|CREATE TABLE attachments (id INT,type_fld varchar(127) NOT NULL,"
          "filename_fld varchar(127) NOT NULL,encode_fld INT default 0,attach_fld BLOB NOT NULL)",
          "email|CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld varchar(127) NOT "
          "NULL,to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime NOT "
          "NULL,mailbox varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext NOT "
          "NULL,numAttach INTEGER NOT NULL DEFAULT 0)",
          "origemail|CREATE TABLE origemail (id INTEGER PRIMARY KEY,orig_fld BLOB NOT NULL)",
          "tags|CREATE TABLE tags (id INTEGER PRIMARY KEY,cat_fld varchar(127) NOT NULL,key_fld "
          "varchar(127) NOT NULL,priority_fld INT DEFAULT 0,notes_fld BLOB NOT NULL)"}));

  ASSERT_EQ(files.requested.size(), 2);
  EXPECT_EQ(
      (QStringList{files.requested[0].name, files.requested[1].name, files.requested[0].path}),
      (QStringList{"user.quillery.creator", "user.quillery.type", file}));
  EXPECT_EQ(files.requested[0].value, files.requested[1].value);
}

TEST_F(ArchiveTest, OpeningAgainKeepsRowsMissingTablesAreAddedAndExecReportsErrors) {
  const QString file = path(QStringLiteral("partial.db"));
  ASSERT_EQ(
      test::execOn(file, QString::fromLatin1(Archive::kCreateEmail) + Archive::kCreateAttachments +
                             "INSERT INTO attachments VALUES(1,'t','f',0,'x');INSERT INTO email "
                             "VALUES(1,'f','t','s','2020-01-01 00:00:00','m','r','b',1);"),
      QString());
  EXPECT_EQ(alertsOpening(file), QStringList());
  EXPECT_EQ(tables(file).size(), 4);
  EXPECT_EQ(alertsOpening(file), QStringList());
  EXPECT_EQ(test::rowsOf(file, "SELECT count(*), (SELECT count(*) FROM attachments) FROM email"),
            QStringList{"1|1"});

  const ExecResult bad = archive.exec(QStringLiteral("SELECT nope FROM email"));
  EXPECT_EQ(bad.code, SQLITE_ERROR);
  EXPECT_EQ(bad.error, "no such column: nope");
  archive.close();
  archive.close();  // a second close must not touch the freed connection
  EXPECT_FALSE(archive.isOpen());
}

TEST_F(ArchiveTest, WhatIsNoArchiveIsRefusedWithItsAlertAndLeftAsItWas) {
  const QString missingFolder = path(QStringLiteral("no/such/folder/a.db"));
  EXPECT_EQ(alertsOpening(QString()), QStringList{"Open Failed| is not a valid database file."});
  EXPECT_EQ(alertsOpening(missingFolder),
            QStringList{"|SQL Error: " + missingFolder + " unable to open database file"});
  EXPECT_FALSE(archive.isOpen());

  const QString text = path(QStringLiteral("notes.txt"));
  ASSERT_TRUE(test::writeFile(text, "These are my notes, not an archive.\n"));
  EXPECT_EQ(alertsOpening(text), QStringList{"Open Failed|This is not a valid database file."});
  EXPECT_EQ(test::readFile(text), "These are my notes, not an archive.\n");

  // An archive from before the attachment count is refused before any table is added.
  const QString old = path(QStringLiteral("old.db"));
  ASSERT_EQ(test::execOn(old,
                         "CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld "
                         "varchar(127) NOT NULL,body_fld mediumtext NOT NULL)"),
            QString());
  EXPECT_EQ(alertsOpening(old),
            QStringList{"Open Failed|This appears to be a pre-version 7.4.1 database format. The "
                        "database format has been revised.  You can convert your old database "
                        "files to the new format by selecting 'Convert Database to New Format' "
                        "from the File menu."});
  EXPECT_EQ(tables(old).size(), 1);
}

TEST_F(ArchiveTest, OpeningStepByStepSaysWhatHappenedWithoutAlertsAndTheHelperGivesOpenDbsAlerts) {
  const QString text = path(QStringLiteral("notes.txt"));
  ASSERT_TRUE(test::writeFile(text, "not an archive"));
  const QString old = path(QStringLiteral("old.db"));
  ASSERT_EQ(test::execOn(old, "CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL)"), QString());
  const QString missingFolder = path(QStringLiteral("no/such/a.db"));
  const struct {
    const char* name;
    QString file;
    OpenStatus::Outcome outcome;
    int code;
  } rows[] = {
      {"a new file", path(QStringLiteral("new.db")), OpenStatus::Outcome::Opened, SQLITE_OK},
      {"a text file", text, OpenStatus::Outcome::NotADatabase, SQLITE_NOTADB},
      {"the old format", old, OpenStatus::Outcome::OldFormat, SQLITE_OK},
      {"a folder that is not there", missingFolder, OpenStatus::Outcome::CannotOpen,
       SQLITE_CANTOPEN},
      {"no path", QString(), OpenStatus::Outcome::CannotOpen, SQLITE_CANTOPEN},
  };
  QStringList reported;
  for (const auto& row : rows) {
    const OpenStatus status = archive.openArchive(row.file);
    EXPECT_EQ(status.outcome, row.outcome) << row.name;
    EXPECT_EQ(status.code, row.code) << row.name;
    archive.reportOpenFailure(status, row.file);
  }
  EXPECT_FALSE(archive.openFailed);
  for (const platform::Alert& alert : dialogs.alerts)
    reported.append(alert.title + '|' + alert.message);
  EXPECT_EQ(reported, (QStringList{"Open Failed|This is not a valid database file.",
                                   "Open Failed|" + QString::fromUtf8(Archive::kOldFormatMessage),
                                   "|SQL Error: " + missingFolder + " unable to open database file",
                                   "Open Failed| is not a valid database file."}));
  // The old file was only looked at; the format check alone writes nothing either.
  EXPECT_EQ(tables(old).size(), 1);
  ASSERT_TRUE(archive.openFile(old).ok());
  EXPECT_FALSE(archive.hasCurrentFormat());
  EXPECT_EQ(tables(old).size(), 1);
}

TEST_F(ArchiveTest, AMessagesRowsAreDeletedTableByTableAndAFailureAsksWhetherToGoOn) {
  const QString file = path(QStringLiteral("rows.db"));
  ASSERT_EQ(alertsOpening(file), QStringList());
  ASSERT_TRUE(archive
                  .exec(QStringLiteral(
                      "INSERT INTO email VALUES(7,'f','t','s','2020-01-01 00:00:00','m','r','b',1);"
                      "INSERT INTO attachments VALUES(7,'t','a.pdf',0,'x');"
                      "INSERT INTO origemail VALUES(7,'src');"
                      "INSERT INTO tags VALUES(7,'c','k',1,'n');"))
                  .ok());
  const auto counts = [&] {
    return test::rowsOf(file,
                        "SELECT (SELECT count(*) FROM email),(SELECT count(*) FROM attachments),"
                        "(SELECT count(*) FROM origemail),(SELECT count(*) FROM tags)");
  };
  int failures = 0;
  const auto goOn = [&](const ExecResult&) { return ++failures, true; };
  EXPECT_TRUE(archive.deleteMessageRows(7, {MessageTable::Email, MessageTable::Origemail}, goOn));
  EXPECT_EQ(counts(), QStringList{"0|1|0|1"});

  // A failing statement (the table is gone) is reported; stopping leaves the tables after it.
  ASSERT_TRUE(archive.exec(QStringLiteral("DROP TABLE attachments")).ok());
  const auto stop = [&](const ExecResult& result) {
    EXPECT_EQ(result.error, "no such table: attachments");
    return ++failures, false;
  };
  EXPECT_FALSE(archive.deleteMessageRows(7, {MessageTable::Attachments, MessageTable::Tags}, stop));
  EXPECT_EQ(failures, 1);
  EXPECT_EQ(test::rowsOf(file, "SELECT count(*) FROM tags"), QStringList{"1"});
  EXPECT_FALSE(archive.deleteMessageRows(7, {MessageTable::Attachments, MessageTable::Tags}, goOn));
  EXPECT_EQ(failures, 2);
  EXPECT_EQ(test::rowsOf(file, "SELECT count(*) FROM tags"), QStringList{"0"});
}

TEST_F(ArchiveTest, TheOpenCheckRefusesOnlyWhatSqliteCannotOpenAndCreatesNothing) {
  const QString text = path(QStringLiteral("notes.txt"));
  ASSERT_TRUE(test::writeFile(text, "not an archive"));
  const QString missing = path(QStringLiteral("missing.db"));
  const struct {
    const char* name;
    QString file;
    int code;
  } rows[] = {
      {"a text file opens, as SQLite reads lazily", text, SQLITE_OK},
      {"a folder", dir.path(), SQLITE_CANTOPEN},
      {"a missing file", missing, SQLITE_CANTOPEN},
      {"no path", QString(), SQLITE_CANTOPEN},
  };
  for (const auto& row : rows) {
    const ExecResult result = openCheck(row.file);
    EXPECT_EQ(result.code, row.code) << row.name;
    EXPECT_EQ(result.error.isEmpty(), row.code == SQLITE_OK) << row.name;
  }
  EXPECT_FALSE(QFile::exists(missing));
  EXPECT_EQ(test::readFile(text), "not an archive");
  EXPECT_FALSE(archive.isOpen());
}

}  // namespace
}  // namespace quillery::archive
