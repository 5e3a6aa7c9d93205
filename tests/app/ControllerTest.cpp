#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>

#include "AppFixture.h"
#include "app/BusyIndicator.h"
#include "app/MainWindow.h"
#include "app/ProgressPanel.h"
#include "app/SetupPanel.h"
#include "app/StorePanel.h"
#include "app/TagPanel.h"

namespace quillery::app {
namespace {

using ControllerTest = AppFixture;

TEST_F(ControllerTest, MenusReachEveryActionAndTheSourceItemsFollowTheSourceSwitch) {
  QuilleryController& app = start();
  QStringList menus;
  for (QAction* menu : app.msWindow->menuBar()->actions())
    menus.append(menu->text().remove(QLatin1Char('&')));
  EXPECT_EQ(menus,
            (QStringList{"File", "Edit", "Database", "Export", "Save", "Print", "Window", "Help"}));
  const char* everyAction =
      "newDbPath openDbPath openMbox setStoreDate convertDBFormat mergeDB backupDB restoreDB "
      "compactDB doPrefPanel defaultFont retrieveFromDB browseDatabase editSqlString showSchema "
      "deleteFromList deleteSelected deleteAll deleteAttachments tagEmail viewOrig replyToEmail "
      "exportMbox exportSQL exportDb exportTab saveSelected saveAll saveList saveOrigSelected "
      "saveOrigAll printSelected printAll terminate";
  for (const QString& name : QString::fromLatin1(everyAction).split(' '))
    EXPECT_TRUE(app.menuActions.contains(name)) << name.toStdString();
  EXPECT_EQ((QStringList{app.mySaveOrigSelected->text(), app.mySaveOrigAll->text(),
                         app.menuActions.value("openMbox")->text(),
                         app.menuActions.value("convertDBFormat")->text()}),
            (QStringList{"this original email", "all original email in list", "Import MBOX Files…",
                         "Convert Database to New Format"}));
  EXPECT_EQ(app.menuActions.value("openDbPath")->shortcut(), QKeySequence(QKeySequence::Open));
  // Every item is an action of the table, a window to bring forward or an edit command.
  const QStringList edits{"undo", "redo", "cut", "copy", "paste", "selectAll"};
  for (auto it = app.menuActions.cbegin(); it != app.menuActions.cend(); ++it)
    EXPECT_TRUE(QuilleryController::actionSlots().contains(it.key()) ||
                it.key().startsWith(QLatin1String("window:")) || edits.contains(it.key()))
        << it.key().toStdString();

  // Sources are kept after a first run: every item is enabled; without them the source items
  // are not, in the menu or as validated.
  for (const bool kept : {true, false}) {
    app.prefPanel->origCheck->setChecked(kept);
    app.savePreferences();
    for (QAction* action : std::as_const(app.menuActions)) {
      const bool on = kept || (action != app.mySaveOrigSelected && action != app.mySaveOrigAll);
      EXPECT_EQ(app.validateMenuItem(action), on) << action->text().toStdString();
      EXPECT_EQ(action->isEnabled(), on) << action->text().toStdString();
    }
    EXPECT_EQ(app.storePanel->viewOrigButton->isEnabled(), kept);
  }

  // The preferences item opens the panel.
  app.menuActions.value("doPrefPanel")->trigger();
  EXPECT_TRUE(app.prefPanel->isVisible());
}

TEST_F(ControllerTest, NoMenuItemChangesTheArchiveWhenItsQuestionsAndPanelsAreCancelled) {
  makeArchive(defaultDbPath(),
              {{"2021-05-01 08:00:00", "one", "Work"}, {"2021-05-02 08:00:00", "two"}});
  QuilleryController& app = start();
  // With the archive listed and a message selected, every item is chosen in turn with every
  // question answered "Cancel" and every panel cancelled: nothing of the archive changes.
  const auto rows = [this] {
    return test::rowsOf(defaultDbPath(),
                        "SELECT (SELECT count(*) FROM email),(SELECT count(*) FROM tags)");
  };
  const QStringList before = rows();
  app.browseDatabase();
  app.storePanel->storeTableView->selectRow(0);
  dialogs.defaultAnswer = 1;
  for (auto it = app.menuActions.cbegin(); it != app.menuActions.cend(); ++it) {
    if (it.key() != QLatin1String("deleteFromList"))
      it.value()->trigger();
  }
  EXPECT_EQ(rows(), before);
  // The only critical alerts are those that tell why there is nothing to do: the list save
  // without a file, the conversion of a current archive and the restore without a backup.
  QStringList critical;
  for (const platform::Alert& alert : dialogs.alerts) {
    if (alert.style == platform::AlertStyle::Critical)
      critical.append(alert.message.section(QLatin1Char(' '), 0, 2));
  }
  critical.sort();
  EXPECT_EQ(critical, (QStringList{"Couldn't open ", "Go to Backup", "the database file"}));
}

TEST_F(ControllerTest, TheProgressCountIsRedrawnOnMultiplesOfTheStepOnly) {
  QuilleryController& app = start();
  ProgressPanel* panel = app.ProgressPanel;
  app.doProgressPanel(QStringLiteral("Retrieving..."));
  EXPECT_TRUE(panel->isVisible() && panel->indicator->isAnimating());
  EXPECT_EQ(panel->windowTitle(), "Retrieving...");
  QStringList shown;
  const int countAndStep[][2] = {{0, 10}, {15, 10}, {9, 10}, {30, 10}, {31, 1}};
  for (const auto& c : countAndStep) {
    app.doProgressCount(c[0], c[1]);
    shown.append(app.storePanel->progressTextField->text() + '|' + panel->countTextField->text());
  }
  EXPECT_EQ(shown, (QStringList{"0|0", "0|0", "0|0", "30|30", "31|31"}));
  panel->close();
  EXPECT_FALSE(panel->isVisible() || panel->indicator->isAnimating());
}

TEST_F(ControllerTest, WorkThatMayBeStoppedHoldsTheWindowsWhileItsStopButtonWorks) {
  QuilleryController& app = start();
  ProgressPanel* panel = app.ProgressPanel;
  int stops = 0;
  panel->offerStop([&stops] { ++stops; });
  panel->open(QStringLiteral("Indexing..."));
  EXPECT_TRUE(panel->stopButton->isVisible());
  EXPECT_EQ(panel->windowModality(), Qt::ApplicationModal);
  panel->stopButton->click();
  panel->keepResponsive();
  EXPECT_EQ(stops, 1);
  panel->close();
  EXPECT_FALSE(panel->stopButton->isVisible());
  // The next work without an offer shows no button and holds nothing.
  panel->open(QStringLiteral("Retrieving..."));
  EXPECT_FALSE(panel->stopButton->isVisible());
  EXPECT_EQ(panel->windowModality(), Qt::NonModal);
  panel->close();
}

TEST_F(ControllerTest, TheArchivePathIsKeptWhenChosenOrHandedOverAndNothingIsCreated) {
  QuilleryController& app = start();
  const QString created = dir.filePath(QStringLiteral("new.db"));
  dialogs.setNextFileName(created);
  app.newDbPath();
  ASSERT_EQ(dialogs.savePanels.size(), 1);
  EXPECT_EQ(dialogs.savePanels.first().directory + dialogs.savePanels.first().fileName, QString());
  EXPECT_EQ(storedValue(QStringLiteral("dbPath")).toString(), created);
  EXPECT_FALSE(QFileInfo::exists(created));
  app.newDbPath();   // cancelled
  app.openDbPath();  // cancelled
  EXPECT_EQ(app.dbPath(), created);

  const QString chosen = dir.filePath(QStringLiteral("b.db"));
  dialogs.setNextFileNames({created, chosen});
  app.openDbPath();
  ASSERT_EQ(dialogs.openPanels.size(), 2);
  EXPECT_TRUE(dialogs.openPanels.last().filesOnly && !dialogs.openPanels.last().multipleSelection);
  EXPECT_EQ(storedValue(QStringLiteral("dbPath")).toString(), chosen);
  EXPECT_TRUE(dialogs.alerts.isEmpty());

  // A file handed over: saving reads its categories and closes it again; nothing is listed.
  const QString other = dir.filePath(QStringLiteral("other archive.db"));
  makeArchive(other, {{"2021-05-01 08:00:00", "kept", "Work"}});
  EXPECT_TRUE(app.applicationOpenFile(other));
  EXPECT_EQ(app.dbPath(), other);
  EXPECT_EQ(storedValue(QStringLiteral("dbPath")).toString(), other);
  EXPECT_FALSE(app.archive.isOpen());
  EXPECT_EQ(app.tagPanel->setCatButton->findText(QStringLiteral("Work")), 1);
  EXPECT_TRUE(app.storePanel->listCountTextField->text().isEmpty());
  EXPECT_EQ(app.storePanel->storeTableView->model()->rowCount(), 0);
}

TEST_F(ControllerTest, QuittingDeletesTheRunFilesAndSavesTheLayoutAndEachRunHasItsOwnFolder) {
  QuilleryController& app = start();
  const QString firstTemp = app.tempDir;
  for (const char* suffix : {".tmp", ".raw", ".log", ".storelog"})
    ASSERT_TRUE(test::writeFile(defaultDbPath() + QLatin1String(suffix), "left by a run"));
  app.prefPanel->htmlCheck->setChecked(false);
  app.msWindow->setGeometry(40, 50, 900, 600);
  app.msWindow->show();
  app.storePanel->storeTableView->horizontalHeader()->resizeSection(4, 333);

  // Closing the main window is asking to quit.
  QSignalSpy quitRequested(&app, &QuilleryController::quitRequested);
  app.msWindow->close();
  EXPECT_EQ(quitRequested.count(), 1);

  QuilleryController& later = restart();
  for (const char* suffix : {".tmp", ".raw", ".log"})
    EXPECT_FALSE(QFileInfo::exists(defaultDbPath() + QLatin1String(suffix))) << suffix;
  // The store log is the user's record of the run and stays.
  EXPECT_TRUE(QFileInfo::exists(defaultDbPath() + QStringLiteral(".storelog")));
  EXPECT_EQ(storedValue(QStringLiteral("htmlState")).toInt(), 0);
  EXPECT_EQ(later.msWindow->size(), QSize(900, 600));
  EXPECT_EQ(later.storePanel->storeTableView->horizontalHeader()->sectionSize(4), 333);

  // Every run makes a private temporary folder of its own.
  EXPECT_TRUE(firstTemp.startsWith(QDir::tempPath() + QStringLiteral("/quillery_")));
  EXPECT_TRUE(QFileInfo(firstTemp).isDir() && QFileInfo(later.tempDir).isDir());
  EXPECT_NE(firstTemp, later.tempDir);
  QDir(firstTemp).removeRecursively();
  QDir(later.tempDir).removeRecursively();
}

}  // namespace
}  // namespace quillery::app
