#include "archive/Archive.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QFile>
#include <QTemporaryDir>

#include "archive/RowCallbacks.h"
#include "support/FakeDialogs.h"
#include "support/RecordingFiles.h"

namespace quillery::archive {
namespace {

using platform::AlertStyle;

class ArchiveTest : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return dir.filePath(name); }

  // The CREATE texts of the tables in a file, by name, read on a connection of its own.
  static QMap<QString, QString> tables(const QString& file) {
    QMap<QString, QString> out;
    sqlite3* db = nullptr;
    sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
    sqlite3_exec(
        db, "SELECT name, sql FROM sqlite_master WHERE type='table'",
        [](void* ctx, int, char** v, char**) {
          (*static_cast<QMap<QString, QString>*>(ctx))[QString::fromUtf8(v[0])] =
              QString::fromUtf8(v[1]);
          return 0;
        },
        &out, nullptr);
    sqlite3_close(db);
    return out;
  }

  static void run(const QString& file, const char* sql) {
    sqlite3* db = nullptr;
    sqlite3_open(file.toUtf8().constData(), &db);
    ASSERT_EQ(sqlite3_exec(db, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
    sqlite3_close(db);
  }

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
  test::RecordingFiles files;
  Archive archive{dialogs, files};
};

TEST_F(ArchiveTest, NewPathGetsFourTablesWithTheirExactTextsAndIsStamped) {
  const QString file = path(QStringLiteral("new archive"));
  archive.openDB(file);

  EXPECT_FALSE(archive.openFailed);
  EXPECT_TRUE(archive.isOpen());
  EXPECT_TRUE(dialogs.alerts.isEmpty());
  const auto made = tables(file);
  ASSERT_EQ(made.size(), 4);
  // sqlite_master keeps the statement without its final semicolon.
  auto withoutSemicolon = [](const char* s) { return QString::fromUtf8(s).chopped(1); };
  EXPECT_EQ(made.value(QStringLiteral("email")), withoutSemicolon(Archive::kCreateEmail));
  EXPECT_EQ(made.value(QStringLiteral("attachments")),
            withoutSemicolon(Archive::kCreateAttachments));
  EXPECT_EQ(made.value(QStringLiteral("origemail")), withoutSemicolon(Archive::kCreateOrigemail));
  EXPECT_EQ(made.value(QStringLiteral("tags")), withoutSemicolon(Archive::kCreateTags));

  ASSERT_EQ(files.requested.size(), 2);
  EXPECT_EQ(files.requested[0].name, QStringLiteral("user.quillery.creator"));
  EXPECT_EQ(files.requested[1].name, QStringLiteral("user.quillery.type"));
  EXPECT_EQ(files.requested[0].value, files.requested[1].value);
  EXPECT_EQ(files.requested[0].path, file);
}

TEST_F(ArchiveTest, TheTableTextsAreTheArchiveFormat) {
  EXPECT_STREQ(Archive::kCreateEmail,
               "CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld varchar(127) NOT "
               "NULL,to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld "
               "datetime NOT NULL,mailbox varchar(127) NOT NULL,mailto varchar(127) NOT "
               "NULL,body_fld mediumtext NOT NULL,numAttach INTEGER NOT NULL DEFAULT 0);");
  EXPECT_STREQ(Archive::kCreateAttachments,
               "CREATE TABLE attachments (id INT,type_fld varchar(127) NOT NULL,filename_fld "
               "varchar(127) NOT NULL,encode_fld INT default 0,attach_fld BLOB NOT NULL);");
}

TEST_F(ArchiveTest, OpeningAgainKeepsRowsAndReopensCleanly) {
  const QString file = path(QStringLiteral("a.db"));
  archive.openDB(file);
  ASSERT_TRUE(archive
                  .exec(QStringLiteral("INSERT INTO email (id,from_fld,to_fld,subj_fld,"
                                       "date_fld,mailbox,mailto,body_fld) VALUES(NULL,'f',"
                                       "'t','s','2020-01-01 00:00:00','m','r','b')"))
                  .ok());
  archive.openDB(file);
  archive.sqlResult.clear();
  archive.exec(QStringLiteral("SELECT count(id) FROM email"), singleValueCallback, &archive);
  EXPECT_EQ(archive.sqlResult, QStringLiteral("1"));
  archive.close();
  archive.close();  // a second close must not touch the freed connection
  EXPECT_FALSE(archive.isOpen());
}

TEST_F(ArchiveTest, EmptyPathIsNotAValidDatabaseFile) {
  archive.openDB(QString());
  EXPECT_TRUE(archive.openFailed);
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts[0].title, QStringLiteral("Open Failed"));
  EXPECT_EQ(dialogs.alerts[0].message, QStringLiteral(" is not a valid database file."));
  EXPECT_FALSE(archive.isOpen());
}

TEST_F(ArchiveTest, UnopenablePathShowsTheSqlErrorWithThePath) {
  const QString file = path(QStringLiteral("no/such/folder/a.db"));
  archive.openDB(file);
  EXPECT_TRUE(archive.openFailed);
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_TRUE(dialogs.alerts[0].title.isEmpty());
  EXPECT_EQ(dialogs.alerts[0].message,
            QStringLiteral("SQL Error: %1 unable to open database file").arg(file));
}

TEST_F(ArchiveTest, TextFileIsRefusedAndLeftUnchanged) {
  const QString file = path(QStringLiteral("notes.txt"));
  QFile f(file);
  ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  const QByteArray content("These are my notes, not an archive.\n");
  f.write(content);
  f.close();

  archive.openDB(file);

  EXPECT_TRUE(archive.openFailed);
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts[0].title, QStringLiteral("Open Failed"));
  EXPECT_EQ(dialogs.alerts[0].message, QStringLiteral("This is not a valid database file."));
  ASSERT_TRUE(f.open(QIODevice::ReadOnly));
  EXPECT_EQ(f.readAll(), content);
}

TEST_F(ArchiveTest, OldFormatIsRefusedBeforeAnyTableIsCreated) {
  const QString file = path(QStringLiteral("old.db"));
  run(file,
      "CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld varchar(127) NOT NULL,"
      "to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime NOT NULL,"
      "mailbox varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext NOT NULL)");

  archive.openDB(file);

  EXPECT_TRUE(archive.openFailed);
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].title, QStringLiteral("Open Failed"));
  EXPECT_EQ(dialogs.alerts[0].message,
            QStringLiteral("This appears to be a pre-version 7.4.1 database format. The database "
                           "format has been revised.  You can convert your old database files "
                           "to the new format by selecting 'Convert Database to New Format' "
                           "from the File menu."));
  EXPECT_EQ(tables(file).keys(), QStringList{QStringLiteral("email")});
}

TEST_F(ArchiveTest, MissingTablesAreCreatedSilentlyAndOthersKept) {
  const QString file = path(QStringLiteral("partial.db"));
  run(file, Archive::kCreateEmail);
  run(file, Archive::kCreateAttachments);
  run(file, "INSERT INTO attachments VALUES(1,'t','f',0,'x')");

  archive.openDB(file);

  EXPECT_FALSE(archive.openFailed);
  EXPECT_TRUE(dialogs.alerts.isEmpty());
  EXPECT_EQ(tables(file).size(), 4);
  archive.sqlResult.clear();
  archive.exec(QStringLiteral("SELECT count(*) FROM attachments"), singleValueCallback, &archive);
  EXPECT_EQ(archive.sqlResult, QStringLiteral("1"));
}

TEST_F(ArchiveTest, ExecReportsCodeAndText) {
  archive.openDB(path(QStringLiteral("a.db")));
  const ExecResult bad = archive.exec(QStringLiteral("SELECT nope FROM email"));
  EXPECT_EQ(bad.code, SQLITE_ERROR);
  EXPECT_EQ(bad.error, QStringLiteral("no such column: nope"));
  EXPECT_TRUE(archive.exec(QStringLiteral("SELECT 1")).ok());
}

}  // namespace
}  // namespace quillery::archive
