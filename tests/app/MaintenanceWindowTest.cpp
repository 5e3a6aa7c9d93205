// The maintenance actions chosen from the menu of the real window: the list window follows a
// merge, and the backup path is kept in the preferences.
#include <QAction>
#include <QLabel>
#include <QTableView>
#include <QTextBrowser>

#include "AppFixture.h"
#include "app/Preferences.h"
#include "app/StorePanel.h"

namespace quillery::app {
namespace {

using MaintenanceWindowTest = AppFixture;

TEST_F(MaintenanceWindowTest, TheMenuMergesIntoTheListWindowAndBacksUpWhereThePreferencesKeep) {
  QuilleryController& app = start();
  const QString mine = dir.filePath(QStringLiteral("mine.db"));
  const QString other = dir.filePath(QStringLiteral("other.db"));
  makeArchive(mine, {{"2020-01-01 00:00:00", "one"}});
  makeArchive(other, {{"2020-01-01 00:00:00", "one"}, {"2021-02-02 00:00:00", "two", "Work"}});
  app.preferences().setDbPath(mine);
  app.storePanel->bodyTextView->setText(QStringLiteral("a message of before"));

  dialogs.setNextFileNames({other});
  dialogs.alerts.clear();
  app.menuActions.value("mergeDB")->trigger();
  EXPECT_EQ(dialogs.alerts.value(1).message, "Processed: 2\nDuplicates: 0\n");
  const QAbstractItemModel* rows = app.storePanel->storeTableView->model();
  ASSERT_EQ(rows->rowCount(), 1);
  EXPECT_EQ(rows->index(0, 0).data().toInt(), 2);
  EXPECT_EQ(rows->index(0, 2).data().toString(), "2021-02-02 00:00:00*");
  EXPECT_EQ(app.storePanel->dbCountTextField->text() + app.storePanel->listCountTextField->text(),
            "2 emails in the database.1 emails in this list.");
  EXPECT_EQ(app.storePanel->bodyTextView->toPlainText(), QString());

  const QString copy = dir.filePath(QStringLiteral("mine.copy"));
  dialogs.setNextFileName(copy);
  app.menuActions.value("backupDB")->trigger();
  EXPECT_EQ(dialogs.savePanels.last().fileName, "mine.db.bak");
  EXPECT_EQ(storedValue(QStringLiteral("backupPath")).toString(), copy);
  ASSERT_EQ(test::execOn(mine, "DELETE FROM email"), QString());
  app.menuActions.value("restoreDB")->trigger();
  EXPECT_EQ(test::rowsOf(mine, "SELECT count(*) FROM email"), QStringList{"2"});

  // A current archive is compacted quietly and not converted.
  dialogs.alerts.clear();
  app.menuActions.value("compactDB")->trigger();
  app.menuActions.value("convertDBFormat")->trigger();
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_TRUE(
      dialogs.alerts[0].message.endsWith("is already in the new format.  It doesn't need "
                                         "to be converted."));
}

}  // namespace
}  // namespace quillery::app
