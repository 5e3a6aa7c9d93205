#include <QCheckBox>
#include <QComboBox>
#include <QFontDatabase>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QTableView>
#include <QTest>

#include "AppFixture.h"
#include "app/Preferences.h"
#include "app/SearchPanel.h"
#include "app/SetupPanel.h"
#include "app/StorePanel.h"
#include "app/TagPanel.h"

namespace quillery::app {
namespace {

QStringList itemsOf(const QComboBox* popUp) {
  QStringList items;
  for (int i = 0; i < popUp->count(); ++i)
    items.append(popUp->itemText(i));
  return items;
}

using PreferencesTest = AppFixture;

TEST_F(PreferencesTest, FirstRunChoosesEveryAccountAndStoresTheDefaultsAtOnce) {
  makeAccounts({"Work@imap.example.com", "Home"});
  QuilleryController& app = start();

  EXPECT_EQ(app.dbPath(), defaultDbPath());
  EXPECT_EQ(storedValue(QStringLiteral("dbPath")).toString(), defaultDbPath());
  QStringList accounts = storedValue(QStringLiteral("accounts")).toStringList();
  accounts.sort();
  EXPECT_EQ(accounts, (QStringList{"Home", "Work@imap.example.com"}));
  EXPECT_EQ(app.prefPanel->selectedRows(), (QList<int>{0, 1}));
  // All-mailboxes and trash keep the check boxes as they stand.
  QString switches;
  for (const char* key :
       {"attachState", "htmlState", "origState", "allmbState", "trashState", "mailboxesState"})
    switches += storedValue(QLatin1String(key)).toString();
  EXPECT_EQ(switches, "111000");
  EXPECT_EQ(
      storedValue("panelFont/family").toString() + '|' + storedValue("panelFont/size").toString(),
      "Lucida Grande|10");
  EXPECT_TRUE(app.prefPanel->attachCheck->isChecked());
  EXPECT_EQ(app.prefPanel->setupTitleTextField->text(),
            QStringLiteral("Select OS X Mail Accounts:"));
  // Naming the default archive does not create it.
  EXPECT_FALSE(QFileInfo::exists(defaultDbPath()));
  EXPECT_TRUE(dialogs.alerts.isEmpty());

  // A later run reads what was stored, and a stored "" path is a first run again.
  quit();
  settings->setValue(QStringLiteral("accounts"), QStringList{"Home"});
  settings->setValue(QStringLiteral("backupPath"), QStringLiteral("/backups/mail.bak"));
  QuilleryController& later = start();
  EXPECT_EQ(later.prefs.accountList, QStringList{"Home"});
  EXPECT_EQ(later.prefs.backupPath, "/backups/mail.bak");
  EXPECT_EQ(later.prefPanel->selectedRows().size(), 1);
  EXPECT_TRUE(later.prefPanel->origCheck->isChecked());

  quit();
  settings->setValue(QStringLiteral("dbPath"), QString());
  EXPECT_EQ(start().dbPath(), defaultDbPath());
  EXPECT_EQ(storedValue(QStringLiteral("accounts")).toStringList().size(), 2);
}

TEST_F(PreferencesTest, CancelKeepsASwitchThatIsOnOverAStoredZeroAndDiscardsThePanelsEdits) {
  QuilleryController& app = start();
  SetupPanel* panel = app.prefPanel;
  // Attach, trash, the mailbox mode and the source switch, in memory and in the panel.
  const auto switches = [&] {
    return QList<int>{app.prefs.attachState,    panel->attachCheck->isChecked(),
                      app.prefs.trashState,     panel->trashCheck->isChecked(),
                      app.prefs.mailboxesState, panel->selectMboxButton->currentIndex(),
                      app.prefs.origState,      panel->origCheck->isChecked()};
  };
  ASSERT_EQ(switches(), (QList<int>{1, 1, 0, 0, 0, 0, 1, 1}));

  // Zero stored behind the application's back does not turn an on switch off; non-zero is
  // taken, and the mode is taken as stored whatever it is.
  settings->setValue(QStringLiteral("attachState"), 0);
  settings->setValue(QStringLiteral("trashState"), 1);
  panel->selectMboxButton->setCurrentIndex(1);
  app.preferences().selectMailboxes();
  ASSERT_EQ(app.prefs.mailboxesState, 1);
  app.doPrefPanel();
  panel->origCheck->setChecked(false);
  panel->dbPath->setText(QStringLiteral("/typed/but/cancelled"));
  app.cancelPrefs();
  EXPECT_FALSE(panel->isVisible());
  EXPECT_EQ(switches(), (QList<int>{1, 1, 1, 1, 0, 0, 1, 1}));
  EXPECT_EQ(app.dbPath(), defaultDbPath());

  // Escape and the close box cancel as the button does.
  for (const bool escape : {true, false}) {
    app.doPrefPanel();
    panel->origCheck->setChecked(false);
    escape ? QTest::keyClick(panel, Qt::Key_Escape) : void(panel->close());
    EXPECT_FALSE(panel->isVisible());
    EXPECT_TRUE(panel->origCheck->isChecked()) << escape;
  }

  // The next save stores the switches as they are in memory.
  app.savePreferences();
  EXPECT_EQ(storedValue(QStringLiteral("attachState")).toInt(), 1);
  EXPECT_EQ(storedValue(QStringLiteral("origState")).toInt(), 1);
}

TEST_F(PreferencesTest, FewerThanTwoStoredCategoriesAreReadFromTheArchive) {
  makeArchive(
      defaultDbPath(),
      {{QStringLiteral("2020-01-01 10:00:00"), QStringLiteral("a"), QStringLiteral("Work")},
       {QStringLiteral("2020-01-02 10:00:00"), QStringLiteral("b"), QStringLiteral("Home")},
       {QStringLiteral("2020-01-03 10:00:00"), QStringLiteral("c"), QString(QLatin1String(""))},
       {QStringLiteral("2020-01-04 10:00:00"), QStringLiteral("d"), QStringLiteral("Work")}});
  settings->setValue(QStringLiteral("dbPath"), defaultDbPath());
  settings->setValue(QStringLiteral("categories"), QStringList{QStringLiteral("Solo")});
  QuilleryController& app = start();
  const QStringList search = itemsOf(app.retrievePanel->searchCatButton);
  EXPECT_EQ(search, (QStringList{"None", "Solo", "Work", "Home"}));  // the stored one stays
  EXPECT_EQ(itemsOf(app.tagPanel->setCatButton), search);
  EXPECT_FALSE(app.archive.isOpen());

  // Saving reads them again without doubling anything, in the pop-ups or in the file.
  app.savePreferences();
  app.savePreferences();
  EXPECT_EQ(itemsOf(app.retrievePanel->searchCatButton), search);
  EXPECT_EQ(storedValue(QStringLiteral("categories")).toStringList().count("Work"), 1);

  // Two stored entries are taken as they are; the archive is not read.
  quit();
  settings->setValue(QStringLiteral("categories"),
                     QStringList{QStringLiteral("Family"), QStringLiteral("Travel")});
  EXPECT_EQ(
      itemsOf(start().retrievePanel->searchCatButton),
      (QStringList{QStringLiteral("None"), QStringLiteral("Family"), QStringLiteral("Travel")}));
}

TEST_F(PreferencesTest, TheListFontComesBackWithFamilyFaceAndSize) {
  const QString family = QStringLiteral("DejaVu Sans");
  if (!QFontDatabase::families().contains(family) ||
      !QFontDatabase::styles(family).contains(QStringLiteral("Bold")))
    GTEST_SKIP() << "DejaVu Sans Bold is not installed (fonts-dejavu-core)";
  QuilleryController& app = start();
  QFont chosen(family);
  chosen.setStyleName(QStringLiteral("Bold"));
  chosen.setPointSizeF(13.5);
  app.changeFont(chosen);
  app.savePreferences();

  // The font as a later run reads it, and the list's rows sized to it.
  const auto described = [](const QFont& font) {
    return QStringLiteral("%1|%2|%3").arg(font.family(), font.styleName()).arg(font.pointSizeF());
  };
  QuilleryController& later = restart();
  EXPECT_EQ(described(later.currentFont()), "DejaVu Sans|Bold|13.5");
  QTableView* table = later.storePanel->storeTableView;
  EXPECT_EQ(table->font().family(), family);
  EXPECT_EQ(table->verticalHeader()->defaultSectionSize(),
            qCeil(QFontMetricsF(later.currentFont()).lineSpacing()) + 2);

  // A font that is no longer installed gives the default.
  quit();
  settings->setValue(
      QStringLiteral("panelFont"),
      QVariantMap{{"family", "No Such Font Family"}, {"face", "Regular"}, {"size", 12.0}});
  EXPECT_EQ(described(start().currentFont()), "Lucida Grande||10");
}

TEST_F(PreferencesTest, SwitchingModeAndSavingReplacesOnlyThatModesList) {
  makeAccounts({"Work@imap.example.com", "Home"});
  QuilleryController& app = start();
  const QStringList accounts = app.prefs.accountList;
  ASSERT_EQ(accounts.size(), 2);

  app.prefPanel->selectMboxButton->setCurrentIndex(1);
  app.preferences().selectMailboxes();
  EXPECT_EQ(app.prefPanel->setupTitleTextField->text(),
            QStringLiteral("Select OS X Mail Mailboxes:"));
  EXPECT_FALSE(app.prefPanel->allmbCheck->isEnabled() || app.prefPanel->trashCheck->isEnabled());
  ASSERT_EQ(app.mailSources.sourceList.size(), 2) << "findmail lists both INBOXes";
  EXPECT_TRUE(app.mailSources.sourceList.first().endsWith(QStringLiteral("INBOX.mbox\n")));
  app.prefPanel->showSources(app.mailSources.sourceList, {1});
  app.savePreferences();
  const QString mailbox = app.mailSources.sourceList.at(1);
  EXPECT_EQ(storedValue(QStringLiteral("mailboxes")).toStringList(), QStringList{mailbox});
  EXPECT_EQ(storedValue(QStringLiteral("accounts")).toStringList(), accounts);

  app.prefPanel->selectMboxButton->setCurrentIndex(0);
  app.preferences().selectMailboxes();
  app.prefPanel->showSources(app.mailSources.sourceList, {0});
  app.savePreferences();
  EXPECT_EQ(storedValue(QStringLiteral("accounts")).toStringList(),
            QStringList{app.mailSources.sourceList.at(0)});
  EXPECT_EQ(storedValue(QStringLiteral("mailboxes")).toStringList(), QStringList{mailbox});

  // Started in mailbox mode, the account-only switches are off in the panel but kept in
  // memory; the mailbox chosen earlier is selected again.
  quit();
  settings->setValue(QStringLiteral("mailboxesState"), 1);
  settings->setValue(QStringLiteral("allmbState"), 1);
  QuilleryController& later = start();
  EXPECT_EQ(later.prefs.allmbState, 1);
  EXPECT_FALSE(later.prefPanel->allmbCheck->isChecked() ||
               later.prefPanel->allmbCheck->isEnabled());
  ASSERT_EQ(later.prefPanel->selectedRows().size(), 1);
  EXPECT_EQ(later.mailSources.sourceList.at(later.prefPanel->selectedRows().first()), mailbox);
}

}  // namespace
}  // namespace quillery::app
