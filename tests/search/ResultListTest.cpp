// Retrieval, sorting and removal of the result list on real archive files.
#include <QSignalSpy>

#include "ResultListFixture.h"

namespace quillery::search {
namespace {

using platform::AlertStyle;

class ResultListTest : public ResultListFixture {};

TEST_F(ResultListTest, RetrievalListsEachRowWithItsTagMarkerAndTheCountsOrFailsWithItsError) {
  QSignalSpy titles(&list, &ResultList::listWindowTitleChanged);
  retrieve();
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "0 emails in this list.0 emails in the database.");

  const int plain = add("2020-01-02 03:04:05", "Plain", 0, "Ann");
  const int tagged = add("2020-01-02 03:04:05", "Tagged", 2);
  tag(tagged);
  retrieve(
      QStringLiteral("SELECT id,date_fld,from_fld,to_fld,subj_fld,NULL,numAttach FROM "
                     "email ORDER BY id DESC"));
  QString shown;
  // The tagged row's date is marked; a NULL mailbox is an empty cell.
  for (const Emailrow& row : list.emailRows)
    shown += QStringLiteral("%1|%2|%3|%4|%5;")
                 .arg(row.emailID())
                 .arg(row.emailDate(), row.emailFrom(), row.emailMailbox())
                 .arg(row.emailAtch());
  EXPECT_EQ(shown, QStringLiteral("%1|2020-01-02 03:04:05*|ann@example.com||2;"
                                  "%2|2020-01-02 03:04:05|Ann||0;")
                       .arg(tagged)
                       .arg(plain));
  EXPECT_EQ(archive.idList, (QStringList{QString::number(tagged), QString::number(plain)}));
  EXPECT_EQ(list.listCount, 2);
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "2 emails in this list.2 emails in the database.");
  EXPECT_EQ(titles.last().first().toString(), "done retrieving email from " + dbPath);
  EXPECT_EQ(progress.events.mid(0, 1), QStringList{"open:Retrieving..."});
  EXPECT_FALSE(progress.isOpen);

  // Only messages with attachments, although the statement returns all.
  list.onlyAttachCheck = true;
  retrieve();
  EXPECT_EQ(archive.idList, QStringList{QString::number(tagged)});
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "1 emails in this list.2 emails in the database.");

  // A failing statement shows its error and leaves the list empty.
  QSignalSpy closed(&list, &ResultList::listWindowClosed);
  retrieve(QStringLiteral("SELECT nonsense FROM email"));
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts[0].message, "SQL Error: no such column: nonsense");
  EXPECT_TRUE(list.emailRows.isEmpty() && archive.idList.isEmpty());
  EXPECT_EQ(list.listCount, 0);
  EXPECT_FALSE(archive.isOpen() || progress.isOpen);
  EXPECT_EQ(closed.size(), 2);  // at the start, and again for the failure
}

TEST_F(ResultListTest, AColumnSortsAscendingAndASecondClickTurnsTheDisplayRound) {
  add("2020-01-01 00:00:00", "banana");
  const int lower = add("b 2020", "apple");
  add("C 2020", "Cherry");
  const int upper = add("2020-01-01 00:00:00", "Apple");
  tag(upper);
  retrieve();
  QSignalSpy indicator(&list, &ResultList::sortIndicatorChanged);

  list.clickColumn("emailSubject");  // case is ignored: apple and Apple are equal
  EXPECT_EQ(shownSubjects(), (QStringList{"apple", "Apple", "banana", "Cherry"}));
  list.clickColumn("emailSubject");
  EXPECT_TRUE(list.sortDescending);
  EXPECT_EQ(shownSubjects(), (QStringList{"Cherry", "banana", "Apple", "apple"}));
  EXPECT_EQ(list.emailRows.first().emailID(), lower);  // the array itself stays ascending

  // Another column sorts by its own comparison and stays reversed. Dates compare case and
  // all: "C" before "b", and the tagged copy after the untagged one of the same second.
  list.clickColumn("emailDate");
  EXPECT_EQ(shownSubjects(), (QStringList{"apple", "Cherry", "Apple", "banana"}));
  list.clickColumn("noSuchColumn");
  EXPECT_EQ(indicator.size(), 3);
  EXPECT_EQ(indicator.last(), (QVariantList{"emailDate", true}));
  EXPECT_EQ(archive.idList.size(), 4);
  EXPECT_EQ(archive.idList.first(), "1");  // the order the rows arrived in
}

}  // namespace
}  // namespace quillery::search
