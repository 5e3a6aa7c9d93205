#include "app/Preferences.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

#include "app/ListFont.h"
#include "app/SetupPanel.h"
#include "ingest/MailSources.h"
#include "ingest/StorePaths.h"
#include "platform/Dialogs.h"
#include "platform/Settings.h"
#include "search/CategoryList.h"

namespace quillery::app {

namespace {

void setChecked(QCheckBox* check, int state) {
  check->setChecked(state != 0);
}

int stateOf(const QCheckBox* check) {
  return check->isChecked() ? 1 : 0;
}

}  // namespace

Preferences::Preferences(SetupPanel& panel, prefs::StoredPreferences& values,
                         ingest::MailSources& sources, search::CategoryList& categories,
                         platform::Settings& settings, platform::Dialogs& dialogs, QString homeDir,
                         QObject* parent)
    : QObject(parent),
      panel_(panel),
      values_(values),
      sources_(sources),
      categories_(categories),
      settings_(settings),
      dialogs_(dialogs),
      homeDir_(std::move(homeDir)) {
  connect(panel_.selectMboxButton, &QComboBox::activated, this, &Preferences::selectMailboxes);
  connect(panel_.dbPath, &QLineEdit::textEdited, this,
          [this](const QString& text) { values_.dbPath = text; });
}

void Preferences::showDbPath(const QString& path) {
  values_.dbPath = path;
  panel_.dbPath->setText(path);
}

void Preferences::getPrefs() {
  values_.readDbPath(settings_);
  showDbPath(values_.dbPath);
  if (values_.dbPath.isEmpty())
    firstRun();

  values_.read(settings_);
  // A stored font whose family has gone is stored as the default font at the next save.
  values_.currentFont = ListFont::describe(ListFont::toFont(values_.currentFont));
  // The check boxes show the switches, or the next save (at quit at the latest) would store
  // whatever they happened to show.
  setChecked(panel_.attachCheck, values_.attachState);
  setChecked(panel_.htmlCheck, values_.htmlState);
  setChecked(panel_.origCheck, values_.origState);

  categories_.categoryList = prefs::StoredPreferences::storedCategories(settings_);
  if (categories_.categoryList.size() < 2)
    readCategories();
  else
    Q_EMIT categoriesRead();

  showModeTitle();
  const bool accounts = values_.mailboxesState == 0;
  panel_.allmbCheck->setChecked(accounts && values_.allmbState != 0);
  panel_.trashCheck->setChecked(accounts && values_.trashState != 0);
  refillSources();
  Q_EMIT switchesApplied();
}

void Preferences::firstRun() {
  showDbPath(defaultDbPath());
  panel_.showSources(sources_.sourceList, sources_.listMailAccounts(values_.accountList));
  panel_.selectAllRows();
  panel_.attachCheck->setChecked(true);
  panel_.htmlCheck->setChecked(true);
  panel_.origCheck->setChecked(true);
  values_.currentFont = prefs::StoredPreferences::defaultFont();
  savePreferences();
}

void Preferences::showModeTitle() {
  const bool accounts = values_.mailboxesState == 0;
  panel_.markMode(values_.mailboxesState);
  panel_.setupTitleTextField->setText(accounts ? QStringLiteral("Select OS X Mail Accounts:")
                                               : QStringLiteral("Select OS X Mail Mailboxes:"));
  // All mailboxes and trash only mean something when whole accounts are stored.
  panel_.allmbCheck->setEnabled(accounts);
  panel_.trashCheck->setEnabled(accounts);
}

void Preferences::refillSources() {
  if (values_.mailboxesState == 0) {
    panel_.showSources(sources_.sourceList, sources_.listMailAccounts(values_.accountList));
    return;
  }
  if (listingBlocked_) {
    // The chosen mailboxes stay chosen, so a save meanwhile keeps them.
    sources_.sourceList = values_.mailboxList;
    QList<int> all;
    for (int row = 0; row < sources_.sourceList.size(); ++row)
      all.append(row);
    panel_.showSources(sources_.sourceList, all);
    return;
  }
  // findmail's list goes to the file the store run later uses for its records.
  const QList<int> rows = sources_.listMailboxes(
      values_.mailboxList, ingest::StorePaths::forArchive(dbPath()).messageFile);
  panel_.showSources(sources_.sourceList, rows);
}

void Preferences::readCategories() {
  if (categories_.getCategories(dbPath()))
    Q_EMIT categoriesRead();
}

void Preferences::savePreferences() {
  readCategories();

  const QStringList chosen = sources_.entriesAt(panel_.selectedRows());
  if (values_.mailboxesState != 0)
    values_.mailboxList = chosen;
  else
    values_.accountList = chosen;

  values_.allmbState = stateOf(panel_.allmbCheck);
  values_.attachState = stateOf(panel_.attachCheck);
  values_.htmlState = stateOf(panel_.htmlCheck);
  values_.trashState = stateOf(panel_.trashCheck);
  values_.origState = stateOf(panel_.origCheck);

  if (values_.dbPath.isEmpty())
    showDbPath(defaultDbPath());

  values_.write(settings_, categories_.categoryList);
  // Hidden, not closed: closing a dialog rejects it, and rejecting the panel cancels it.
  panel_.hide();
  Q_EMIT switchesApplied();
  Q_EMIT listFontApplied();
}

void Preferences::doPrefPanel() {
  refillSources();
  setChecked(panel_.allmbCheck, values_.allmbState);
  setChecked(panel_.attachCheck, values_.attachState);
  setChecked(panel_.htmlCheck, values_.htmlState);
  setChecked(panel_.trashCheck, values_.trashState);
  setChecked(panel_.origCheck, values_.origState);
  panel_.dbPath->clearFocus();
  panel_.show();
  panel_.raise();
  panel_.activateWindow();
}

void Preferences::cancelPrefs() {
  panel_.hide();
  // getPrefs also refills the table by the mode and puts the check boxes back.
  getPrefs();
}

void Preferences::selectMailboxes() {
  const bool mailboxes = panel_.selectMboxButton->currentText() != QLatin1String("Select Accounts");
  values_.mailboxesState = mailboxes ? 1 : 0;
  showModeTitle();
  // Choosing mailboxes only disables the two account switches; they keep their marks.
  if (!mailboxes) {
    setChecked(panel_.allmbCheck, values_.allmbState);
    setChecked(panel_.trashCheck, values_.trashState);
  }
  refillSources();
}

void Preferences::newDbPath() {
  platform::SavePanel panel;
  panel.title = tr("New Archive File");
  const QString path = dialogs_.runSavePanel(panel);
  if (!path.isEmpty())
    setDbPath(path);
}

void Preferences::openDbPath() {
  platform::OpenPanel panel;
  panel.title = tr("Open Archive File");
  panel.filesOnly = true;
  panel.multipleSelection = false;
  const QStringList chosen = dialogs_.runOpenPanel(panel);
  if (!chosen.isEmpty())
    setDbPath(chosen.constLast());
}

void Preferences::setDbPath(const QString& path) {
  showDbPath(path);
  savePreferences();
}

}  // namespace quillery::app
