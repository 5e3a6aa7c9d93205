// Tags written to selected messages, and messages or their attachments deleted from the
// archive, each checked in the file as another program reads it.
#include <QSignalSpy>

#include "SearchFixture.h"

namespace quillery::search {
namespace {

using platform::AlertStyle;

class TaggingDeletionTest : public SearchFixture {
 protected:
  void SetUp() override {
    SearchFixture::SetUp();
    for (int i = 0; i < 5; ++i) {
      ids.append(add(QStringLiteral("2020-01-0%1 10:00:00").arg(i + 1),
                     QStringLiteral("Message %1").arg(i), 2));
      attach(ids.last(), QStringLiteral("a%1.pdf").arg(i), "QQ==");
      attach(ids.last(), QStringLiteral("part%1.HTML").arg(i), "<p>", 0);
      archive.exec(QStringLiteral("INSERT INTO origemail VALUES(%1,'source')").arg(ids.last()));
    }
    retrieve();
    list.clickColumn("emailID");
    list.clickColumn("emailID");  // shown reversed: display row d is message 4 - d
  }
  // Makes the statement that touches this message's rows of the table fail.
  void refuse(const char* table, const char* when, int id) {
    ASSERT_EQ(
        test::execOn(dbPath, QStringLiteral("CREATE TRIGGER refuse BEFORE %1 ON %2 WHEN "
                                            "%3.id=%4 BEGIN SELECT RAISE(ABORT,'refused'); END")
                                 .arg(QLatin1String(when), QLatin1String(table),
                                      QLatin1String(qstrcmp(when, "INSERT") == 0 ? "new" : "old"))
                                 .arg(id)),
        QString());
  }
  QStringList dates() const {
    QStringList out;
    for (int row = 0; row < list.emailRows.size(); ++row)
      out.append(list.rowAt(row).emailDate().endsWith('*') ? "*" : "-");
    return out;
  }
  QList<int> ids;
};

TEST_F(TaggingDeletionTest, TagsReplaceWholeRowsOfTheSelectedMessagesAndShowTheirMarker) {
  QSignalSpy added(&tagging, &Tagging::categoryAdded);
  QSignalSpy replaced(&list, &ResultList::rowsReplaced);
  progress.events.clear();
  const TagValues work{"Wo\"rk", "a\\b", "line one\nline two", "Highest"};
  ASSERT_TRUE(tagging.addTags(work, {0, 1, 3}));
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT * FROM tags ORDER BY id"),
            (QStringList{QStringLiteral("%1|Wo\"rk|a\\\\b|1|line oneline two").arg(ids[1]),
                         QStringLiteral("%1|Wo\"rk|a\\\\b|1|line oneline two").arg(ids[3]),
                         QStringLiteral("%1|Wo\"rk|a\\\\b|1|line oneline two").arg(ids[4])}));
  EXPECT_EQ(dates(), (QStringList{"*", "*", "-", "*", "-"}));
  EXPECT_EQ(dialogs.alerts.last().title, "Done tagging email");
  EXPECT_EQ(dialogs.alerts.last().message, "3 emails have been tagged.");
  EXPECT_EQ(replaced.size(), 1);
  EXPECT_EQ(progress.events.first(), "count:0");
  EXPECT_FALSE(progress.isOpen);

  // Read back as stored; a new category is added once.
  const auto shown = tagging.setTags(1);
  ASSERT_TRUE(shown.has_value());
  EXPECT_EQ(*shown, (TagValues{"Wo\"rk", "a\\\\b", "line oneline two", "Highest"}));
  EXPECT_EQ(tagging.setTags(2), TagValues{});
  tagging.addTags({"Wo\"rk", "", "", "Low"}, {2});
  EXPECT_EQ(added.size(), 1);
  EXPECT_EQ(categories.categoryList, QStringList{"Wo\"rk"});
  EXPECT_EQ(
      test::rowsOf(dbPath, QStringLiteral("SELECT priority_fld FROM tags WHERE id=%1").arg(ids[2])),
      QStringList{"4"});

  // All empty and "None": the rows go and so do the markers.
  tagging.addTags(TagValues{}, {0, 1, 2});
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT id FROM tags"), QStringList{QString::number(ids[1])});
  EXPECT_EQ(dates(), (QStringList{"-", "-", "-", "*", "-"}));
}

TEST_F(TaggingDeletionTest, AFailingTagStatementStopsAndCommitsNothing) {
  const QStringList before = table("tags");
  refuse("tags", "INSERT", ids[2]);
  EXPECT_FALSE(tagging.addTags({"Work", "", "", "None"}, {0, 1, 2, 3}));
  EXPECT_EQ(dialogs.alerts.last().style, AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts.last().message, "SQL error: refused");
  EXPECT_TRUE(progress.isOpen);
  EXPECT_EQ(table("tags"), before);
  archive.close();
  EXPECT_EQ(table("tags"), before);
}

TEST_F(TaggingDeletionTest, SelectedAllOrOnlyAttachmentsAreDeletedAndTagsOutliveTheirMessage) {
  tagging.addTags({"Keep", "", "", "None"}, {0});
  const QStringList tags = table("tags");
  // "Cancel" changes nothing.
  dialogs.setNextAnswer(1);
  EXPECT_FALSE(deletion.deleteSelected({1, 3}));
  EXPECT_EQ(table("email").size(), 5);

  ASSERT_TRUE(deletion.deleteSelected({0, 3}));  // messages 4 and 1
  EXPECT_EQ(dialogs.alerts.last().title, "Delete this email from database");
  EXPECT_EQ(dialogs.alerts.last().buttons, (QStringList{"Delete", "Cancel"}));
  EXPECT_EQ(test::rowsOf(dbPath,
                         "SELECT id FROM email UNION ALL SELECT '|' UNION ALL SELECT "
                         "DISTINCT id FROM attachments UNION ALL SELECT '|' UNION ALL "
                         "SELECT id FROM origemail"),
            (QStringList{"1", "3", "4", "|", "1", "3", "4", "|", "1", "3", "4"}));
  EXPECT_EQ(table("tags"), tags);
  EXPECT_EQ(shownSubjects(), (QStringList{"Message 3", "Message 2", "Message 0"}));
  EXPECT_EQ(list.listCountText(), "3 emails in this list.");

  ASSERT_TRUE(deletion.deleteAttachments({1}));  // message 2: its pdf goes, its HTML stays
  EXPECT_EQ(
      test::rowsOf(dbPath,
                   QStringLiteral("SELECT filename_fld FROM attachments WHERE id=%1").arg(ids[2])),
      QStringList{"part2.HTML"});
  EXPECT_EQ(
      test::rowsOf(dbPath, QStringLiteral("SELECT numAttach FROM email WHERE id=%1").arg(ids[2])),
      QStringList{"2"});
  EXPECT_EQ(list.rowAt(1).emailAtch(), 2);
  EXPECT_EQ(dialogs.alerts.last().message,
            "The attachments have been deleted from the database for the selected email in the "
            "list.");

  ASSERT_TRUE(deletion.deleteAll());
  EXPECT_EQ(table("email") + table("attachments") + table("origemail"), QStringList{});
  EXPECT_EQ(table("tags"), tags);
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "0 emails in this list.0 emails in the database.");
  EXPECT_TRUE(archive.idList.isEmpty());
}

TEST_F(TaggingDeletionTest, AStatementFailingPartWayLeavesTheFileAsItWas) {
  const QStringList before = table("email") + table("attachments") + table("origemail");
  refuse("origemail", "DELETE", ids[1]);
  EXPECT_FALSE(deletion.deleteAll());  // messages 4, 3 and 2 go first
  EXPECT_EQ(dialogs.alerts.last().message, "SQL error: refused");
  EXPECT_EQ(list.listCount, 5);
  EXPECT_TRUE(progress.isOpen);
  EXPECT_EQ(table("email") + table("attachments") + table("origemail"), before);
  // The transaction is left open; when the connection goes, so do its deletes.
  archive.close();
  EXPECT_EQ(table("email") + table("attachments") + table("origemail"), before);
}

}  // namespace
}  // namespace quillery::search
