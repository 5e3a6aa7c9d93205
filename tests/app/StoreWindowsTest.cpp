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
#include <QtMath>
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
#include "support/TestEnvironment.h"

namespace quillery::app {
namespace {

class StoreWindowsTest : public AppFixture {
 protected:
  // A folder holding a stand-in for domail with this shell body.
  QString fakeTools(const QByteArray& body) {
    const QString tools = dir.filePath(QStringLiteral("tools"));
    QDir().mkpath(tools);
    writeFile(tools + QStringLiteral("/domail"), "#!/bin/sh\n" + body, true);
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

  QStringList column(QuilleryController& app, const QString& identifier) {
    QAbstractItemModel* model = app.storePanel->storeTableView->model();
    const int c = static_cast<search::EmailTableModel*>(model)->columnOf(identifier);
    QStringList values;
    for (int row = 0; row < model->rowCount(); ++row)
      values.append(model->index(row, c).data().toString());
    return values;
  }

  static QByteArray mbox(const QStringList& subjects) {
    QByteArray out;
    for (int i = 0; i < subjects.size(); ++i) {
      const QString time =
          QStringLiteral("%1:%2:00").arg(10 + i / 60).arg(i % 60, 2, 10, QLatin1Char('0'));
      out += QStringLiteral(
                 "From sender%1@example.org Mon Jan  1 %3 2018\n"
                 "From: Sender %1 <sender%1@example.org>\nTo: me@example.com\nSubject: %2\n"
                 "Date: Mon, 1 Jan 2018 %3 +0000\nMessage-ID: <%1@example.org>\n\n"
                 "Body of message %1.\n\n")
                 .arg(QString::number(i), subjects.at(i), time)
                 .toUtf8();
    }
    return out;
  }

  static QByteArray mbox(int messages) {
    QStringList subjects;
    for (int i = 0; i < messages; ++i)
      subjects.append(QStringLiteral("message %1").arg(i));
    return mbox(subjects);
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

TEST_F(StoreWindowsTest, TheStoreDatePanelStartsOnTheNewestStoredDay) {
  makeArchive(defaultDbPath(), {{QStringLiteral("2019-07-04 12:00:00"), QStringLiteral("old")},
                                {QStringLiteral("2021-02-09 08:30:00"), QStringLiteral("new")}});
  settings->setValue(QStringLiteral("dbPath"), defaultDbPath());
  QuilleryController& app = start();
  QTest::mouseClick(app.prefPanel->storeButton, Qt::LeftButton);
  StoreDatePanel* panel = app.storeDatePanel;
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(panel->beginStoreYr->title(), QStringLiteral("2021"));
  EXPECT_EQ(panel->beginStoreMo->title(), QStringLiteral("02"));
  EXPECT_EQ(panel->beginStoreDa->title(), QStringLiteral("09"));
  EXPECT_EQ(panel->endStoreYr->title(), QStringLiteral("All"));
  EXPECT_FALSE(app.archive.isOpen());

  // A year before the pop-up's first is added in its place; Cancel closes the panel.
  QTest::mouseClick(panel->cancelButton, Qt::LeftButton);
  EXPECT_FALSE(panel->isVisible());
  const QString old = dir.filePath(QStringLiteral("1985.db"));
  makeArchive(old, {{QStringLiteral("1985-03-07 09:00:00"), QStringLiteral("ancient")}});
  app.applicationOpenFile(old);
  app.setStoreDate();
  EXPECT_EQ(panel->beginStoreYr->title(), QStringLiteral("1985"));
  EXPECT_EQ(panel->beginStoreYr->itemText(2), QStringLiteral("1990"));

  // An empty archive leaves the dates alone; one that does not open shows no panel.
  panel->resetAll();
  panel->hide();
  const QString empty = dir.filePath(QStringLiteral("empty.db"));
  makeArchive(empty, {});
  app.applicationOpenFile(empty);
  app.setStoreDate();
  EXPECT_TRUE(panel->isVisible());
  EXPECT_EQ(panel->beginStoreYr->title(), QStringLiteral("All"));
  panel->hide();
  const QString text = dir.filePath(QStringLiteral("notes.txt"));
  writeFile(text, "these are not the droids you are looking for, nor an archive\n");
  app.applicationOpenFile(text);
  dialogs.alerts.clear();
  app.setStoreDate();
  EXPECT_FALSE(panel->isVisible());
  ASSERT_FALSE(dialogs.alerts.isEmpty());
  EXPECT_EQ(dialogs.alerts.last().title, QStringLiteral("Open Failed"));
}

TEST_F(StoreWindowsTest, AnMboxRunFromTheWindowListsSortsAndRemovesWhatItStored) {
  if (!haveDomail())
    GTEST_SKIP() << "domail is not built in " << test::toolsDir().toStdString();
  QuilleryController& app = start();
  const QString file = dir.filePath(QStringLiteral("export.mbox"));
  writeFile(file, mbox({QStringLiteral("banana split"), QStringLiteral("Apple pie"),
                        QStringLiteral("cherry tart")}));

  dialogs.setNextFileNames({file});
  app.menuActions.value(QStringLiteral("openMbox"))->trigger();
  ASSERT_EQ(dialogs.openPanels.size(), 1);
  EXPECT_EQ(dialogs.openPanels.first().title, QStringLiteral("Import MBOX Files"));
  EXPECT_TRUE(dialogs.openPanels.first().multipleSelection);
  ASSERT_TRUE(app.storeDatePanel->isVisible());

  ASSERT_TRUE(storeFromDatePanel(app));
  EXPECT_EQ(dialogs.alerts.first().title, QStringLiteral("Store Email in Database"));
  EXPECT_EQ(dialogs.alerts.last().title, QStringLiteral("Done Storing Email"));
  EXPECT_TRUE(dialogs.alerts.last().message.startsWith(QStringLiteral("Parsed: 3\n")))
      << dialogs.alerts.last().message.toStdString();
  EXPECT_FALSE(app.ProgressPanel->isVisible());
  EXPECT_FALSE(app.ProgressPanel->parseCancelButton->isVisible());
  EXPECT_EQ(app.storePanel->windowTitle(), QStringLiteral("done storing email in ") + app.dbPath());
  EXPECT_TRUE(app.msWindow->windowTitle().startsWith(app.storePanel->windowTitle()));
  EXPECT_EQ(app.storePanel->listCountTextField->text(), QStringLiteral("3 emails in this list."));
  EXPECT_EQ(app.storePanel->dbCountTextField->text(), QStringLiteral("3 emails in the database."));
  QTableView* table = app.storePanel->storeTableView;
  EXPECT_EQ(table->verticalHeader()->defaultSectionSize(),
            qCeil(QFontMetricsF(app.prefs.currentFont).lineSpacing()) + 2);

  // The header sorts the list, ignoring case; a second click shows it reversed.
  auto& model = static_cast<search::EmailTableModel&>(*table->model());
  const int subject = model.columnOf(QStringLiteral("emailSubject"));
  clickHeader(app, subject);
  EXPECT_EQ(column(app, QStringLiteral("emailSubject")),
            (QStringList{"Apple pie", "banana split", "cherry tart"}));
  EXPECT_EQ(table->horizontalHeader()->sortIndicatorSection(), subject);
  EXPECT_EQ(table->horizontalHeader()->sortIndicatorOrder(), Qt::AscendingOrder);
  clickHeader(app, subject);
  EXPECT_EQ(column(app, QStringLiteral("emailSubject")),
            (QStringList{"cherry tart", "banana split", "Apple pie"}));
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
  EXPECT_EQ(app.resultList().listCount, 3);
  EXPECT_EQ(dialogs.alerts.size(), alerts);
  app.prefPanel->hide();
  app.msWindow->activateWindow();
  ASSERT_TRUE(active(app.msWindow));
  QTest::keyClick(table, Qt::Key_Delete);
  EXPECT_EQ(column(app, QStringLiteral("emailSubject")), QStringList{"banana split"});
  EXPECT_EQ(app.storePanel->listCountTextField->text(), QStringLiteral("1 emails in this list."));
  EXPECT_EQ(app.storePanel->dbCountTextField->text(), QStringLiteral("3 emails in the database."));

  // The search panel's attachments box holds for the next listing; a listing that fails
  // leaves no "retrieving" title behind.
  app.retrievePanel->onlyAttachCheck->setChecked(true);
  app.archive.sqlText = QStringLiteral(
      "SELECT id,date_fld,from_fld,to_fld,subj_fld,mailbox,numAttach FROM email ORDER BY id");
  app.resultList().retrieve(app.dbPath());
  EXPECT_EQ(app.storePanel->listCountTextField->text(), QStringLiteral("0 emails in this list."));
  app.archive.sqlText = QStringLiteral("SELECT id FROM nowhere");
  app.resultList().retrieve(app.dbPath());
  EXPECT_TRUE(dialogs.alerts.last().message.startsWith(QStringLiteral("SQL Error: ")));
  EXPECT_EQ(app.msWindow->windowTitle(), QStringLiteral("Quillery"));
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

  EXPECT_EQ(
      dialogs.alerts.first().message,
      QStringLiteral("Quillery will store and index the text and attachments of all emails "
                     "in the In boxes and Sent boxes of your selected email accounts, plus "
                     "all emails in all of your other mailboxes, into the database file at ") +
          app.dbPath() + QLatin1Char('.'));
  QFile arguments(tools + QStringLiteral("/arguments"));
  ASSERT_TRUE(arguments.open(QIODevice::ReadOnly));
  EXPECT_EQ(QString::fromUtf8(arguments.readAll()).split('\n', Qt::SkipEmptyParts),
            (QStringList{app.dbPath() + QStringLiteral(".log"), "1", "1", "1", "0", "0", "1", "0",
                         "2020-03-01 00:00:00", "2022-99-99 00:00:00", "Work@imap.example.com",
                         "Mailboxes"}));
  // Nothing was stored: the list is empty and says so.
  EXPECT_EQ(app.storePanel->listCountTextField->text(), QStringLiteral("0 emails in this list."));
}

TEST_F(StoreWindowsTest, CancelAndQuitBothStopAToolThatWouldRunOnAndQuittingKeepsWhatWasStored) {
  const QString tools = fakeTools(
      "i=0\nwhile [ $i -lt 600 ]; do printf 'Looking for email'; sleep 0.1; i=$((i+1)); done\n");
  QuilleryController& app = start(tools);
  const QString file = dir.filePath(QStringLiteral("any.mbox"));
  writeFile(file, mbox({QStringLiteral("never read")}));

  dialogs.setNextFileNames({file});
  app.openMbox();
  QSignalSpy finished(&app.storeRun(), &ingest::StoreRun::finished);
  QTest::mouseClick(app.storeDatePanel->storeButton, Qt::LeftButton);
  ASSERT_TRUE(app.storeRun().isRunning());
  EXPECT_TRUE(app.ProgressPanel->isVisible());
  ASSERT_TRUE(app.ProgressPanel->parseCancelButton->isVisible());
  QTest::mouseClick(app.ProgressPanel->parseCancelButton, Qt::LeftButton);
  ASSERT_TRUE(finished.wait(30000)) << "the cancelled tool was not stopped";
  EXPECT_FALSE(app.storeRun().isRunning());
  EXPECT_EQ(dialogs.alerts.last().title, QStringLiteral("Done Storing Email"));

  dialogs.setNextFileNames({file});
  app.openMbox();
  QTest::mouseClick(app.storeDatePanel->storeButton, Qt::LeftButton);
  ASSERT_TRUE(app.storeRun().isRunning());
  // Listing mailboxes would overwrite the run's record file; the chosen ones are shown.
  const QString record = app.dbPath() + QStringLiteral(".tmp");
  writeFile(record, "FROM: the message being stored\n");
  app.prefs.mailboxList = QStringList{QStringLiteral("/mail/Work/INBOX.mbox\n")};
  app.prefPanel->selectMboxButton->setCurrentIndex(1);
  app.preferences().selectMailboxes();
  EXPECT_EQ(app.mailSources.sourceList, app.prefs.mailboxList);
  EXPECT_EQ(app.prefPanel->selectedRows(), QList<int>{0});
  QFile recordFile(record);
  ASSERT_TRUE(recordFile.open(QIODevice::ReadOnly));
  EXPECT_EQ(recordFile.readAll(), QByteArray("FROM: the message being stored\n"));

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
  writeFile(file, mbox(100));
  dialogs.setNextFileNames({file});
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
  EXPECT_GE(stored, 1);
  EXPECT_LT(stored, 100);
  EXPECT_EQ(emailCount(other), stored);
}

TEST_F(StoreWindowsTest, SavingTheSetupOrNamingAnotherArchiveDuringARunLosesNothing) {
  if (!haveDomail())
    GTEST_SKIP() << "domail is not built in " << test::toolsDir().toStdString();
  QuilleryController& app = start();
  const QString file = dir.filePath(QStringLiteral("many.mbox"));
  writeFile(file, mbox(40));
  const QString other = dir.filePath(QStringLiteral("other.db"));
  dialogs.setNextFileNames({file});
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

  EXPECT_EQ(emailCount(defaultDbPath()), 40);
  EXPECT_EQ(app.storePanel->listCountTextField->text(), QStringLiteral("40 emails in this list."));
  EXPECT_EQ(app.storePanel->windowTitle(),
            QStringLiteral("done storing email in ") + defaultDbPath());
  EXPECT_FALSE(QFileInfo::exists(other));
}

}  // namespace
}  // namespace quillery::app
