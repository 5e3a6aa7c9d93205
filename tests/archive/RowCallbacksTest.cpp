#include "archive/RowCallbacks.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "archive/Archive.h"
#include "support/FakeDialogs.h"
#include "support/RecordingFiles.h"

namespace quillery::archive {
namespace {

class RowCallbacksTest : public ::testing::Test {
 protected:
  void SetUp() override {
    archive.openDB(dir.filePath(QStringLiteral("a.db")));
    ASSERT_FALSE(archive.openFailed);
    for (const char* sql :
         {"INSERT INTO email VALUES(1,'Ann <a@x>','b@y','Hi','2001-02-03 04:05:06','INBOX','a@x',"
          "'body',2)",
          "INSERT INTO email VALUES(2,'C','D','Re: Hi','2001-02-04 00:00:00','Sent','c','b2',0)",
          "INSERT INTO tags VALUES(1,'Work','k1',3,'n')"}) {
      ASSERT_TRUE(archive.exec(QString::fromUtf8(sql)).ok()) << sql;
    }
  }

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
  test::RecordingFiles files;
  Archive archive{dialogs, files};
};

TEST_F(RowCallbacksTest, SingleValueKeepsLastRowNullAsZeroAndEmptyResultUntouched) {
  archive.sqlResult = QStringLiteral("before");
  archive.exec(QStringLiteral("SELECT subj_fld FROM email ORDER BY id"), singleValueCallback,
               &archive);
  EXPECT_EQ(archive.sqlResult, QStringLiteral("Re: Hi"));

  archive.exec(QStringLiteral("SELECT NULL"), singleValueCallback, &archive);
  EXPECT_EQ(archive.sqlResult, QStringLiteral("0"));

  archive.sqlResult = QStringLiteral("kept");
  archive.exec(QStringLiteral("SELECT id FROM email WHERE id=99"), singleValueCallback, &archive);
  EXPECT_EQ(archive.sqlResult, QStringLiteral("kept"));
}

TEST_F(RowCallbacksTest, ColumnListAppendsRowsInColumnOrder) {
  archive.columnValues.clear();
  archive.columnRowCount = 0;
  archive.exec(QStringLiteral("SELECT id,mailbox FROM email ORDER BY id"), columnListCallback,
               &archive);
  EXPECT_EQ(archive.columnRowCount, 2);
  EXPECT_EQ(archive.columnValues, (QStringList{QStringLiteral("1"), QStringLiteral("INBOX"),
                                               QStringLiteral("2"), QStringLiteral("Sent")}));
}

TEST_F(RowCallbacksTest, IdListCollectsEveryRowAsText) {
  IdListState ids;
  archive.exec(QStringLiteral("SELECT id FROM email ORDER BY id DESC"), idListCallback, &ids);
  EXPECT_EQ(ids.idCount, 2);
  EXPECT_EQ(ids.idList, (QStringList{QStringLiteral("2"), QStringLiteral("1")}));
}

TEST_F(RowCallbacksTest, EmailRecordReadsTheColumnsInContractOrder) {
  EmailRecord record;
  archive.exec(QStringLiteral("SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,(CASE WHEN "
                              "mailbox ISNULL THEN '' ELSE mailbox END),mailto,numAttach FROM "
                              "email WHERE id=1"),
               emailRecordCallback, &record);
  EXPECT_EQ(record.recDate, QStringLiteral("2001-02-03 04:05:06"));
  EXPECT_EQ(record.recFrom, QStringLiteral("Ann <a@x>"));
  EXPECT_EQ(record.recTo, QStringLiteral("b@y"));
  EXPECT_EQ(record.recSubject, QStringLiteral("Hi"));
  EXPECT_EQ(record.recBody, QStringLiteral("body"));
  EXPECT_EQ(record.recMailbox, QStringLiteral("INBOX"));
  EXPECT_EQ(record.recMailto, QStringLiteral("a@x"));
  EXPECT_EQ(record.recNumAttach, 2);

  // Without the eighth column, and with a NULL count, the count reads 0.
  archive.exec(QStringLiteral("SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,mailbox,mailto "
                              "FROM email WHERE id=1"),
               emailRecordCallback, &record);
  EXPECT_EQ(record.recNumAttach, 0);
  archive.exec(QStringLiteral("SELECT '','','','','','','',NULL"), emailRecordCallback, &record);
  EXPECT_EQ(record.recNumAttach, 0);
}

TEST_F(RowCallbacksTest, TagRecordRaisesFoundOnlyWhenARowExists) {
  TagRecord tags;
  archive.exec(QStringLiteral("SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags WHERE id=2"),
               tagRecordCallback, &tags);
  EXPECT_FALSE(tags.tagFound);
  EXPECT_TRUE(tags.tagCategory.isEmpty());

  archive.exec(QStringLiteral("SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags WHERE id=1"),
               tagRecordCallback, &tags);
  EXPECT_TRUE(tags.tagFound);
  EXPECT_EQ(tags.tagCategory, QStringLiteral("Work"));
  EXPECT_EQ(tags.tagKeywords, QStringLiteral("k1"));
  EXPECT_EQ(tags.tagPriority, QStringLiteral("3"));
  EXPECT_EQ(tags.tagNotes, QStringLiteral("n"));
}

}  // namespace
}  // namespace quillery::archive
