#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QTimer>
#include <functional>
#include <memory>

#include "AppFixture.h"
#include "app/DatePopUp.h"
#include "app/MainWindow.h"
#include "app/Preferences.h"
#include "app/ProgressPanel.h"
#include "app/SearchPanel.h"
#include "app/SetupPanel.h"
#include "app/StoreDatePanel.h"
#include "app/StorePanel.h"
#include "ingest/StoreRun.h"
#include "search/EmailTableModel.h"
#include "search/ResultList.h"
#include "support/MailFixtures.h"
#include "support/TestEnvironment.h"

namespace quillery::app {
namespace {

using test::MailFixtures;

class StoreWindowsTest : public AppFixture {
 protected:
  // A folder holding a stand-in for domail with this shell body.
  QString fakeTools(const QByteArray& body) {
    const QString tools = dir.filePath(QStringLiteral("tools"));
    QDir().mkpath(tools);
    EXPECT_TRUE(test::writeFile(tools + QStringLiteral("/domail"), "#!/bin/sh\n" + body, true));
    return tools;
  }

  // Waits for the run that the window started to end; false when it did not start or end.
  bool storeFromDatePanel(QuilleryController& app) {
    QSignalSpy finished(&app.storeRun(), &ingest::StoreRun::finished);
    QTest::mouseClick(app.storeDatePanel->storeButton, Qt::LeftButton);
    return !finished.isEmpty() || finished.wait(120000);
  }

  void clickHeader(QuilleryController& app, int column) {
    QHeaderView* header = app.storePanel->storeTableView->horizontalHeader();
    const QPoint centre(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                        header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, centre);
  }

  // An mbox file of generated messages (see MailFixtures).
  QString mbox(int messages) const {
    const QString file = dir.filePath(QStringLiteral("mail.mbox"));
    EXPECT_TRUE(test::MailFixtures::writeMbox(file, messages));
    return file;
  }

  // Calls action from the event loop, between two messages, once the run has stored one.
  static void whenFirstStored(QuilleryController& app, std::function<void()> action) {
    auto once = std::make_shared<QMetaObject::Connection>();
    *once = QObject::connect(app.ProgressPanel, &QWidget::windowTitleChanged, app.ProgressPanel,
                             [once, action, panel = app.ProgressPanel](const QString& title) {
                               if (title != QLatin1String("Storing in database..."))
                                 return;
                               QObject::disconnect(*once);
                               QTimer::singleShot(0, panel, action);
                             });
  }

  static bool haveDomail() {
    return QFileInfo(test::toolPath(QStringLiteral("domail"))).isExecutable();
  }
};

TEST_F(StoreWindowsTest, AMailFolderChosenFromTheFileMenuIsStoredUnderItsName) {
  if (!haveDomail())
    GTEST_SKIP() << "domail is not built in " << test::toolsDir().toStdString();
  // A Maildir as mutt or mbsync keeps it: one message delivered, one read, none arriving.
  const QString maildir = dir.filePath(QStringLiteral("Maildir"));
  for (const char* sub : {"cur", "new", "tmp"})
    ASSERT_TRUE(QDir().mkpath(maildir + '/' + QLatin1String(sub)));
  ASSERT_TRUE(test::writeFile(maildir + "/new/1700000000.1.host", test::MailFixtures::message(0)));
  ASSERT_TRUE(
      test::writeFile(maildir + "/cur/1700000001.2.host:2,S", test::MailFixtures::message(1)));
  QuilleryController& app = start();
  dialogs.setNextFileNames({maildir});
  app.menuActions.value(QStringLiteral("openMailFolder"))->trigger();
  ASSERT_EQ(dialogs.openPanels.size(), 1);
  EXPECT_EQ(dialogs.openPanels.first().title, "Import Mail Folder");
  EXPECT_FALSE(dialogs.openPanels.first().filesOnly);
  ASSERT_TRUE(app.storeDatePanel->isVisible());

  ASSERT_TRUE(storeFromDatePanel(app));
  EXPECT_EQ(app.storePanel->listCountTextField->text(), "2 emails in this list.");
  QStringList mailboxes;
  for (const search::Emailrow& row : app.resultList().emailRows)
    mailboxes.append(row.emailMailbox().trimmed());
  EXPECT_EQ(mailboxes, (QStringList{"Maildir", "Maildir"}));
}

TEST_F(StoreWindowsTest, TheStoreDatePanelStartsOnTheNewestStoredDay) {
  makeArchive(defaultDbPath(),
              {{"2019-07-04 12:00:00", "old"}, {"2021-02-09 23:59:59", "newest, late in the day"}});
  settings->setValue(QStringLiteral("dbPath"), defaultDbPath());
  QuilleryController& app = start();
  StoreDatePanel* panel = app.storeDatePanel;
  const auto shown = [panel] {
    return QStringList{panel->beginStoreYr->title(), panel->beginStoreMo->title(),
                       panel->beginStoreDa->title(), panel->endStoreYr->title()};
  };
  QTest::mouseClick(app.prefPanel->storeButton, Qt::LeftButton);
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(shown(), (QStringList{"2021", "02", "09", "All"}));
  EXPECT_FALSE(app.archive.isOpen());

  // A year before the pop-up's first is added in its place; Cancel closes the panel.
  QTest::mouseClick(panel->cancelButton, Qt::LeftButton);
  EXPECT_FALSE(panel->isVisible());
  const QString old = dir.filePath(QStringLiteral("1985.db"));
  makeArchive(old, {{"1985-03-07 09:00:00", "ancient"}});
  app.applicationOpenFile(old);
  app.setStoreDate();
  EXPECT_EQ(panel->beginStoreYr->title(), "1985");
  EXPECT_EQ(panel->beginStoreYr->itemText(2), "1990");

  // An empty (or new) archive leaves the dates alone; one that does not open shows no panel
  // and leaves no failure behind for the next action.
  panel->resetAll();
  panel->hide();
  app.applicationOpenFile(dir.filePath(QStringLiteral("new.db")));
  app.setStoreDate();
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(shown(), (QStringList{"All", "All", "All", "All"}));
  panel->hide();
  const QString text = dir.filePath(QStringLiteral("notes.txt"));
  ASSERT_TRUE(
      test::writeFile(text, "these are not the droids you are looking for, nor an archive\n"));
  app.applicationOpenFile(text);
  dialogs.alerts.clear();
  app.setStoreDate();
  EXPECT_FALSE(panel->isVisible());
  ASSERT_FALSE(dialogs.alerts.isEmpty());
  EXPECT_EQ(dialogs.alerts.last().title, "Open Failed");
  EXPECT_FALSE(app.archive.openFailed);
}

TEST_F(StoreWindowsTest, AnMboxRunFromTheWindowListsSortsAndRemovesWhatItStored) {
  if (!haveDomail())
    GTEST_SKIP() << "domail is not built in " << test::toolsDir().toStdString();
  QuilleryController& app = start();
  dialogs.setNextFileNames({mbox(4)});
  app.menuActions.value(QStringLiteral("openMbox"))->trigger();
  ASSERT_TRUE(app.storeDatePanel->isVisible());

  ASSERT_TRUE(storeFromDatePanel(app));
  EXPECT_TRUE(dialogs.alerts.last().message.startsWith(QStringLiteral("Parsed: 4\n")))
      << dialogs.alerts.last().message.toStdString();
  EXPECT_FALSE(app.ProgressPanel->isVisible() || app.storePanel->parseCancelButton->isVisible());
  EXPECT_TRUE(app.msWindow->windowTitle().startsWith(app.storePanel->windowTitle()));
  EXPECT_EQ(app.storePanel->listCountTextField->text(), "4 emails in this list.");
  EXPECT_EQ(app.storePanel->dbCountTextField->text(), "4 emails in the database.");
  QTableView* table = app.storePanel->storeTableView;

  // The header sorts the list; a second click shows it reversed.
  auto& model = static_cast<search::EmailTableModel&>(*table->model());
  const int subject = model.columnOf(QStringLiteral("emailSubject"));
  const auto m = &MailFixtures::subject;
  clickHeader(app, subject);
  EXPECT_EQ(listColumn(app, "emailSubject"), (QStringList{m(3), m(0), m(1), m(2)}));
  EXPECT_EQ(table->horizontalHeader()->sortIndicatorSection(), subject);
  EXPECT_EQ(table->horizontalHeader()->sortIndicatorOrder(), Qt::AscendingOrder);
  clickHeader(app, subject);
  EXPECT_EQ(listColumn(app, "emailSubject"), (QStringList{m(2), m(1), m(0), m(3)}));
  EXPECT_EQ(table->horizontalHeader()->sortIndicatorOrder(), Qt::DescendingOrder);

  // Removing the selected rows of the reversed list touches the list only. Delete does it in
  // the main window; in another window's table neither it nor Ctrl+Delete touches the list.
  table->selectRow(0);
  table->selectionModel()->select(model.index(2, 0),
                                  QItemSelectionModel::Select | QItemSelectionModel::Rows);
  const qsizetype alerts = dialogs.alerts.size();
  const auto active = [](QWidget* window) {
    return QTest::qWaitFor([window] { return QApplication::activeWindow() == window; });
  };
  app.doPrefPanel();
  ASSERT_TRUE(active(app.prefPanel));
  QTest::keyClick(app.prefPanel->selectAcctsTableView, Qt::Key_Delete);
  QTest::keyClick(app.prefPanel->selectAcctsTableView, Qt::Key_Delete, Qt::ControlModifier);
  EXPECT_EQ(app.resultList().listCount, 4);
  EXPECT_EQ(dialogs.alerts.size(), alerts);
  app.prefPanel->hide();
  app.msWindow->activateWindow();
  ASSERT_TRUE(active(app.msWindow));
  QTest::keyClick(table, Qt::Key_Delete);
  EXPECT_EQ(listColumn(app, "emailSubject"), (QStringList{m(1), m(3)}));
  EXPECT_EQ(app.storePanel->listCountTextField->text(), "2 emails in this list.");
  EXPECT_EQ(app.storePanel->dbCountTextField->text(), "4 emails in the database.");

  // The search panel's attachments box holds for the next listing (message 2 has one); a
  // listing that fails leaves no "retrieving" title behind.
  app.retrievePanel->onlyAttachCheck->setChecked(true);
  app.archive.sqlText = QStringLiteral(
      "SELECT id,date_fld,from_fld,to_fld,subj_fld,mailbox,numAttach FROM email ORDER BY id");
  app.resultList().retrieve(app.dbPath());
  EXPECT_EQ(listColumn(app, "emailSubject"), QStringList{m(2)});
  app.archive.sqlText = QStringLiteral("SELECT id FROM nowhere");
  app.resultList().retrieve(app.dbPath());
  EXPECT_TRUE(dialogs.alerts.last().message.startsWith(QStringLiteral("SQL Error: ")));
  EXPECT_EQ(app.msWindow->windowTitle(), "Quillery");
}

TEST_F(StoreWindowsTest, TheStoreButtonHandsThePreferencesDatesAndAccountsToTheTool) {
  makeAccounts({QStringLiteral("Work@imap.example.com"), QStringLiteral("Home")});
  const QString tools = fakeTools(
      "for a in \"$@\"; do printf '%s\\n' \"$a\"; done > \"$(dirname \"$0\")/arguments\"\n");
  QuilleryController& app = start(tools);
  // Setup's Store button takes the accounts and switches as the panel shows them.
  app.doPrefPanel();
  app.prefPanel->allmbCheck->setChecked(true);
  const int work = app.mailSources.sourceList.indexOf(QStringLiteral("Work@imap.example.com"));
  app.prefPanel->selectAcctsTableView->selectRow(work);
  ASSERT_EQ(app.prefPanel->selectedRows(), QList<int>{work});
  QTest::mouseClick(app.prefPanel->storeButton, Qt::LeftButton);
  EXPECT_FALSE(app.prefPanel->isVisible());
  EXPECT_EQ(storedValue(QStringLiteral("accounts")).toStringList(),
            QStringList{QStringLiteral("Work@imap.example.com")});

  app.storeDatePanel->beginStoreYr->selectTitle(QStringLiteral("2020"));
  app.storeDatePanel->beginStoreMo->selectTitle(QStringLiteral("03"));
  app.storeDatePanel->beginStoreDa->selectTitle(QStringLiteral("01"));
  app.storeDatePanel->endStoreYr->selectTitle(QStringLiteral("2022"));
  ASSERT_TRUE(storeFromDatePanel(app));

  EXPECT_EQ(test::readFile(tools + QStringLiteral("/arguments")).split('\n', Qt::SkipEmptyParts),
            (QStringList{app.dbPath() + QStringLiteral(".log"), "1", "1", "1", "0", "0", "1", "0",
                         "2020-03-01 00:00:00", "2022-99-99 00:00:00", "Work@imap.example.com",
                         "Mailboxes"}));
  // Nothing was stored: the list is empty and says so.
  EXPECT_EQ(app.storePanel->listCountTextField->text(), "0 emails in this list.");
}

TEST_F(StoreWindowsTest, CancelAndQuitBothStopAToolThatWouldRunOnAndQuittingKeepsWhatWasStored) {
  const QString tools = fakeTools(
      "i=0\nwhile [ $i -lt 600 ]; do printf 'Looking for email'; sleep 0.1; i=$((i+1)); done\n");
  QuilleryController& app = start(tools);
  const QString file = mbox(1);

  dialogs.setNextFileNames({file});
  app.openMbox();
  QSignalSpy finished(&app.storeRun(), &ingest::StoreRun::finished);
  QTest::mouseClick(app.storeDatePanel->storeButton, Qt::LeftButton);
  ASSERT_TRUE(app.storeRun().isRunning());
  EXPECT_TRUE(app.ProgressPanel->isVisible());
  // Closed with Escape, the progress panel leaves the run's count and Cancel in the main window.
  app.msWindow->show();
  QTest::keyClick(app.ProgressPanel, Qt::Key_Escape);
  EXPECT_FALSE(app.ProgressPanel->isVisible());
  EXPECT_TRUE(app.storePanel->progressTextField->isVisible());
  ASSERT_TRUE(app.storePanel->parseCancelButton->isVisible());
  QTest::mouseClick(app.storePanel->parseCancelButton, Qt::LeftButton);
  ASSERT_TRUE(finished.wait(30000)) << "the cancelled tool was not stopped";
  EXPECT_FALSE(app.storeRun().isRunning());
  EXPECT_EQ(dialogs.alerts.last().title, "Done Storing Email");

  dialogs.setNextFileNames({file});
  app.openMbox();
  QTest::mouseClick(app.storeDatePanel->storeButton, Qt::LeftButton);
  ASSERT_TRUE(app.storeRun().isRunning());
  // Listing mailboxes would overwrite the run's record file; the chosen ones are shown.
  const QString record = app.dbPath() + QStringLiteral(".tmp");
  ASSERT_TRUE(test::writeFile(record, "FROM: the message being stored\n"));
  app.prefs.mailboxList = QStringList{QStringLiteral("/mail/Work/INBOX.mbox\n")};
  app.prefPanel->selectMboxButton->setCurrentIndex(1);
  app.preferences().selectMailboxes();
  EXPECT_EQ(app.mailSources.sourceList, app.prefs.mailboxList);
  EXPECT_EQ(app.prefPanel->selectedRows(), QList<int>{0});
  EXPECT_EQ(test::readFile(record), "FROM: the message being stored\n");

  // Another archive named meanwhile does not keep quitting from removing the run's files.
  const QString other = dir.filePath(QStringLiteral("other.db"));
  app.applicationOpenFile(other);
  app.prefPanel->htmlCheck->setChecked(false);
  app.applicationWillTerminate();
  EXPECT_FALSE(app.storeRun().isRunning());
  EXPECT_EQ(storedValue(QStringLiteral("htmlState")).toInt(), 0);
  EXPECT_FALSE(QFileInfo::exists(record));

  // With the real tool: every message stored before quitting is in the archive afterwards.
  if (!haveDomail())
    GTEST_SKIP() << "domail is not built in " << test::toolsDir().toStdString();
  QuilleryController& real = restart();
  dialogs.setNextFileNames({mbox(100)});
  real.openMbox();
  int stored = 0;
  bool hasQuit = false;
  whenFirstStored(real, [&] {
    EXPECT_TRUE(real.storeRun().isRunning());
    real.applicationWillTerminate();
    stored = real.counters.storedCount;
    hasQuit = true;
  });
  QTest::mouseClick(real.storeDatePanel->storeButton, Qt::LeftButton);
  ASSERT_TRUE(QTest::qWaitFor([&hasQuit] { return hasQuit; }, 120000));
  EXPECT_FALSE(real.archive.storeRunUnderWay);
  EXPECT_TRUE(stored >= 1 && stored < 100) << stored;
  EXPECT_EQ(
      test::rowsOf(other, "SELECT count(*), (SELECT * FROM pragma_integrity_check) FROM email"),
      QStringList{QString::number(stored) + "|ok"});
}

TEST_F(StoreWindowsTest, SavingTheSetupOrNamingAnotherArchiveDuringARunLosesNothing) {
  if (!haveDomail())
    GTEST_SKIP() << "domail is not built in " << test::toolsDir().toStdString();
  QuilleryController& app = start();
  const QString other = dir.filePath(QStringLiteral("other.db"));
  dialogs.setNextFileNames({mbox(40)});
  app.openMbox();
  whenFirstStored(app, [&] {
    EXPECT_TRUE(app.storeRun().isRunning());
    app.doPrefPanel();
    QTest::mouseClick(app.prefPanel->saveButton, Qt::LeftButton);
    app.applicationOpenFile(other);
    // Store Email… saves too, but shows no date panel while the run goes on.
    app.doPrefPanel();
    QTest::mouseClick(app.prefPanel->storeButton, Qt::LeftButton);
    EXPECT_FALSE(app.storeDatePanel->isVisible());
  });
  ASSERT_TRUE(storeFromDatePanel(app));

  EXPECT_EQ(test::rowsOf(defaultDbPath(), "SELECT count(*) FROM email"), QStringList{"40"});
  EXPECT_EQ(app.storePanel->listCountTextField->text(), "40 emails in this list.");
  EXPECT_EQ(app.storePanel->windowTitle(),
            QStringLiteral("done storing email in ") + defaultDbPath());
  EXPECT_FALSE(QFileInfo::exists(other));
}

}  // namespace
}  // namespace quillery::app
