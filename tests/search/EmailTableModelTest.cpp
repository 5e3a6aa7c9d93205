// The table model over the result list, checked by Qt's own model tester through retrieval,
// sorting and removal.
#include <QAbstractItemModelTester>
#include <QSignalSpy>

#include "ResultListFixture.h"
#include "search/EmailTableModel.h"

namespace quillery::search {
namespace {

class EmailTableModelTest : public ResultListFixture {};

TEST_F(EmailTableModelTest, TheTableShowsTheListInDisplayOrderThroughEveryChange) {
  EmailTableModel model(list, {"emailSubject", "bogus", "emailAtch", "emailDate"});
  QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
  ASSERT_EQ(model.columnCount(), 3);  // an identifier that names no value is left out
  EXPECT_EQ(model.headerData(0, Qt::Horizontal, Qt::UserRole), "emailSubject");
  EXPECT_EQ(model.headerData(2, Qt::Horizontal).toString(), "Date");
  EXPECT_EQ(model.columnOf("emailAtch"), 1);

  for (int i = 0; i < 30; ++i)
    add(QStringLiteral("2020-01-01 00:00:%1").arg(i, 2, 10, QLatin1Char('0')),
        QStringLiteral("Subject %1").arg(i), i % 3);
  retrieve();
  ASSERT_EQ(model.rowCount(), 30);
  EXPECT_EQ(model.data(model.index(29, 0)), "Subject 29");
  EXPECT_EQ(model.data(model.index(29, 1)), 2);

  // Removing rows of the reversed list takes out those shown; a row given twice or past the
  // end is no error. The counts follow, the ids of the listing stay, the font is set again.
  list.clickColumn("emailDate");
  list.clickColumn("emailDate");
  EXPECT_EQ(model.data(model.index(0, 2)), "2020-01-01 00:00:29");
  QSignalSpy font(&list, &ResultList::fontReapplied);
  list.deleteFromList({28, 0, 1, 0, 99});
  ASSERT_EQ(model.rowCount(), 27);
  EXPECT_EQ(model.data(model.index(0, 0)), "Subject 27");
  EXPECT_EQ(model.data(model.index(26, 0)), "Subject 0");
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "27 emails in this list.30 emails in the database.");
  EXPECT_EQ(archive.idList.size(), 30);
  EXPECT_EQ(font.size(), 1);
  list.clickColumn("emailDate");  // shown ascending again
  list.deleteFromList({0});
  EXPECT_EQ(model.data(model.index(0, 0)), "Subject 2");

  // A store run counts the messages it reads before any of them is listed.
  list.clear();
  list.listCount = 12;
  EXPECT_EQ(model.rowCount(), 0);
  list.onlyAttachCheck = true;
  retrieve();
  EXPECT_EQ(model.rowCount(), 20);

  // A list made one row at a time by a feature stays reset until it is complete.
  list.onlyAttachCheck = false;
  list.startRows(QString());
  EXPECT_EQ(list.listCountText() + list.dbCountText(), "");
  list.appendRow(Emailrow(41, 1, "2021-01-01 00:00:00*", "a", "b", "Made one", "m"));
  list.appendRow(Emailrow(42, 0, "2021-01-02 00:00:00", "a", "b", "Made two", "m"));
  list.finishRows();
  ASSERT_EQ(model.rowCount(), 2);
  EXPECT_EQ(model.data(model.index(1, 0)), "Made two");
  EXPECT_EQ(archive.idList, (QStringList{"41", "42"}));
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "2 emails in this list.30 emails in the database.");
  EXPECT_EQ(font.size(), 3);
}

}  // namespace
}  // namespace quillery::search
