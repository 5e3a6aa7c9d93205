#include "archive/RowCallbacks.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "support/FakeDialogs.h"
#include "support/RecordingFiles.h"

namespace quillery::archive {
namespace {

class RowCallbacksTest : public ::testing::Test {
 protected:
  void SetUp() override {
    archive.openDB(dir.filePath(QStringLiteral("a.db")));
    ASSERT_FALSE(archive.openFailed);
    ASSERT_TRUE(archive
                    .exec(QStringLiteral(
                        "INSERT INTO email VALUES(1,'Ann <a@x>','b@y','Hi','2001-02-03 04:05:06',"
                        "'INBOX','a@x','body',2);INSERT INTO email VALUES(2,'C','D','Re: Hi',"
                        "'2001-02-04 00:00:00','Sent','c','b2',0);"
                        "INSERT INTO tags VALUES(1,'Work','k1',3,'n')"))
                    .ok());
  }

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
  test::RecordingFiles files;
  Archive archive{dialogs, files};
};

TEST_F(RowCallbacksTest, EachCallbackCollectsItsRowsAsText) {
  // The last row wins, NULL reads "0", and no row leaves the value as it was.
  archive.sqlResult = QStringLiteral("before");
  archive.exec(QStringLiteral("SELECT subj_fld FROM email ORDER BY id"), singleValueCallback,
               &archive);
  EXPECT_EQ(archive.sqlResult, "Re: Hi");
  archive.exec(QStringLiteral("SELECT NULL"), singleValueCallback, &archive);
  EXPECT_EQ(archive.sqlResult, "0");
  archive.sqlResult = QStringLiteral("kept");
  archive.exec(QStringLiteral("SELECT id FROM email WHERE id=99"), singleValueCallback, &archive);
  EXPECT_EQ(archive.sqlResult, "kept");

  archive.columnRowCount = 0;
  archive.exec(QStringLiteral("SELECT id,mailbox FROM email ORDER BY id"), columnListCallback,
               &archive);
  EXPECT_EQ(archive.columnRowCount, 2);
  EXPECT_EQ(archive.columnValues, (QStringList{"1", "INBOX", "2", "Sent"}));

  IdListState ids;
  archive.exec(QStringLiteral("SELECT id FROM email ORDER BY id DESC"), idListCallback, &ids);
  EXPECT_EQ(ids.idCount, 2);
  EXPECT_EQ(ids.idList, (QStringList{"2", "1"}));

  // The record callbacks read their columns in order.
  EmailRecord r;
  archive.exec(QStringLiteral("SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,mailbox,mailto,"
                              "numAttach FROM email WHERE id=1"),
               emailRecordCallback, &r);
  EXPECT_EQ(
      (QStringList{r.recDate, r.recFrom, r.recTo, r.recSubject, r.recBody, r.recMailbox,
                   r.recMailto, QString::number(r.recNumAttach)}),
      (QStringList{"2001-02-03 04:05:06", "Ann <a@x>", "b@y", "Hi", "body", "INBOX", "a@x", "2"}));
  // Without the eighth column, and with a NULL count, the count reads 0.
  archive.exec(QStringLiteral("SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,mailbox,mailto "
                              "FROM email WHERE id=1"),
               emailRecordCallback, &r);
  EXPECT_EQ(r.recNumAttach, 0);
  r.recNumAttach = 5;
  archive.exec(QStringLiteral("SELECT '','','','','','','',NULL"), emailRecordCallback, &r);
  EXPECT_EQ(r.recNumAttach, 0);

  // A tag record is found only when its row exists.
  TagRecord t;
  const QString tagsOf = QStringLiteral(
      "SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags "
      "WHERE id=%1");
  archive.exec(tagsOf.arg(2), tagRecordCallback, &t);
  EXPECT_FALSE(t.tagFound);
  archive.exec(tagsOf.arg(1), tagRecordCallback, &t);
  EXPECT_TRUE(t.tagFound);
  EXPECT_EQ((QStringList{t.tagCategory, t.tagKeywords, t.tagPriority, t.tagNotes}),
            (QStringList{"Work", "k1", "3", "n"}));
}

TEST_F(RowCallbacksTest, TheMessageTextBlockHasEveryLabelAndNoBreakAfterTheBody) {
  // Every label written, a NULL column adding nothing after it, no
  // line break after the body; a query without rows leaves the text alone.
  QString rowText = QStringLiteral("earlier");
  archive.exec(QString::fromLatin1(kPrintTextStatement).arg(1), printTextCallback, &rowText);
  EXPECT_EQ(rowText,
            "ID: 1\nDATE: 2001-02-03 04:05:06\nFROM: Ann <a@x>\nTO: b@y\nSUBJECT: Hi\n"
            "MAILBOX: INBOX\n\nbody");
  archive.exec(QStringLiteral("SELECT 7,NULL,'f','t','s','',NULL"), printTextCallback, &rowText);
  EXPECT_EQ(rowText, "ID: 7\nDATE: \nFROM: f\nTO: t\nSUBJECT: s\nMAILBOX: \n\n");
  archive.exec(QString::fromLatin1(kPrintTextStatement).arg(99), printTextCallback, &rowText);
  EXPECT_TRUE(rowText.startsWith(QLatin1String("ID: 7\n")));
}

}  // namespace
}  // namespace quillery::archive
