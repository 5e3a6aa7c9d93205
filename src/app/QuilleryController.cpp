#include "app/QuilleryController.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDir>
#include <QFontDialog>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTableView>
#include <QTextBrowser>
#include <QUuid>

#include "app/HtmlWindow.h"
#include "app/IdPanel.h"
#include "app/MainWindow.h"
#include "app/MenuBarBuilder.h"
#include "app/OrigWindow.h"
#include "app/Preferences.h"
#include "app/ProgressPanel.h"
#include "app/SearchPanel.h"
#include "app/SetupPanel.h"
#include "app/SqlPanel.h"
#include "app/StoreDatePanel.h"
#include "app/StorePanel.h"
#include "app/StorePanelBinding.h"
#include "app/TagPanel.h"
#include "app/WindowFrames.h"
#include "ingest/StorePaths.h"
#include "ingest/StorePreparation.h"
#include "ingest/StoreRun.h"
#include "platform/Dialogs.h"
#include "platform/Files.h"
#include "search/ResultList.h"

namespace quillery::app {

namespace {

QString toolsFolder(const QString& given) {
  return given.isEmpty() ? QCoreApplication::applicationDirPath() : given;
}

// As a desktop pop-up adds an item: one of the same title moves to the end, so the list
// never shows a category twice.
void addItemsWithTitles(QComboBox* popUp, const QStringList& titles) {
  for (const QString& title : titles) {
    const int existing = popUp->findText(title, Qt::MatchExactly);
    if (existing >= 0)
      popUp->removeItem(existing);
    popUp->addItem(title);
  }
}

}  // namespace

QuilleryController::QuilleryController(AppPorts ports, const QString& toolsDir, QObject* parent)
    : QObject(parent),
      userName(qEnvironmentVariable("USER")),
      homeDir(qEnvironmentVariable("HOME")),
      archive(ports.dialogs, ports.files),
      categories(archive),
      mailSources(ports.dialogs, homeDir, toolsFolder(toolsDir) + QStringLiteral("/findmail")),
      ports_(ports) {
  buildInterface();
  resultList_ = std::make_unique<search::ResultList>(archive, ports_.dialogs, *ProgressPanel);
  storeRun_ = std::make_unique<ingest::StoreRun>(archive, *resultList_, message, counters,
                                                 ports_.dialogs, *ProgressPanel,
                                                 toolsFolder(toolsDir) + QStringLiteral("/domail"));
  storePreparation_ =
      std::make_unique<ingest::StorePreparation>(archive, ports_.dialogs, counters, *storeRun_);
  preferences_ = std::make_unique<Preferences>(*prefPanel, prefs, mailSources, categories,
                                               ports_.settings, ports_.dialogs, homeDir);
  frames_ = std::make_unique<WindowFrames>(ports_.settings);
  storeBinding_ = std::make_unique<StorePanelBinding>(*msWindow, *storeDatePanel, *SQLPanel,
                                                      *resultList_, *storePreparation_, *storeRun_);
  connect(storeBinding_.get(), &StorePanelBinding::listFontWanted, this,
          &QuilleryController::applyListFont);
  connect(storeRun_.get(), &ingest::StoreRun::finished, this,
          [this] { preferences_->setMailboxListingBlocked(false); });
  bindPanels();
}

QuilleryController::~QuilleryController() {
  // The windows go first: the table's model reads the result list until it is gone.
  storeBinding_.reset();
  mainWindow_.reset();
}

void QuilleryController::buildInterface() {
  mainWindow_ = std::make_unique<MainWindow>();
  msWindow = mainWindow_.get();
  storePanel = msWindow->storePanel();
  prefPanel = new SetupPanel(msWindow);
  storeDatePanel = new StoreDatePanel(msWindow);
  retrievePanel = new SearchPanel(msWindow);
  tagPanel = new TagPanel(msWindow);
  SQLPanel = new SqlPanel(msWindow);
  IdPanel = new app::IdPanel(msWindow);
  ProgressPanel = new app::ProgressPanel(msWindow);
  origWindow = new OrigWindow(msWindow);
  myHtmlWindow = new HtmlWindow(msWindow);

  menuActions = MenuBarBuilder::build(msWindow->menuBar(), [this](QAction* action) {
    connect(action, &QAction::triggered, this, [this, action] { perform(action); });
  });
  for (QAction* action : std::as_const(menuActions)) {
    // Whatever window has the focus, the menu items' shortcuts reach the controller; the
    // deleting ones only from the main window, or Delete in another window's table or text
    // would remove messages from the list or the archive.
    const bool deletes = action->objectName().startsWith(QLatin1String("delete"));
    action->setShortcutContext(deletes ? Qt::WindowShortcut : Qt::ApplicationShortcut);
  }
  mySaveOrigSelected = menuActions.value(QStringLiteral("saveOrigSelected"));
  mySaveOrigAll = menuActions.value(QStringLiteral("saveOrigAll"));
  const QList<QMenu*> menus = msWindow->menuBar()->findChildren<QMenu*>();
  for (QMenu* menu : menus)
    connect(menu, &QMenu::aboutToShow, this, &QuilleryController::revalidateMenuItems);

  auto named = [this](const char* name) { return menuActions.value(QLatin1String(name)); };
  msWindow->setToolBarActions({named("doPrefPanel"), named("setStoreDate"), named("openMbox"),
                               nullptr, named("retrieveFromDB"), named("browseDatabase"), nullptr,
                               named("tagEmail"), named("viewOrig"), named("replyToEmail")});
}

void QuilleryController::bindPanels() {
  connect(msWindow, &MainWindow::closed, this, &QuilleryController::quitRequested);
  connect(prefPanel->saveButton, &QPushButton::clicked, this, &QuilleryController::savePreferences);
  connect(prefPanel->cancelButton, &QPushButton::clicked, this, &QuilleryController::cancelPrefs);
  // Escape and the close box dismiss the panel as Cancel does; its edits must not wait there
  // for the next save.
  connect(prefPanel, &QDialog::rejected, this, &QuilleryController::cancelPrefs);
  // The run takes the accounts and switches the panel shows, not those saved before.
  connect(prefPanel->storeButton, &QPushButton::clicked, this, [this] {
    savePreferences();
    setStoreDate();
  });
  connect(prefPanel->newDbButton, &QPushButton::clicked, this, &QuilleryController::newDbPath);
  connect(prefPanel->openDbButton, &QPushButton::clicked, this, &QuilleryController::openDbPath);
  connect(storeDatePanel->storeButton, &QPushButton::clicked, this,
          &QuilleryController::parseEmail);
  connect(storeDatePanel->cancelButton, &QPushButton::clicked, this,
          &QuilleryController::cancelStore);
  connect(ProgressPanel, &app::ProgressPanel::cancelRequested, this,
          &QuilleryController::cancelParse);

  resultList_->onlyAttachCheck = retrievePanel->onlyAttachCheck->isChecked();
  connect(retrievePanel->onlyAttachCheck, &QCheckBox::toggled, this,
          [this](bool checked) { resultList_->onlyAttachCheck = checked; });

  connect(preferences_.get(), &Preferences::categoriesRead, this,
          &QuilleryController::addCategoriesToPopUps);
  connect(preferences_.get(), &Preferences::switchesApplied, this, [this] {
    storePanel->viewOrigButton->setEnabled(prefs.origState != 0);
    revalidateMenuItems();
  });
  connect(preferences_.get(), &Preferences::listFontApplied, this,
          &QuilleryController::applyListFont);

  // Buttons of actions that later versions bring answer as their menu items do.
  const QList<QPair<QPushButton*, const char*>> pending{
      {retrievePanel->searchButton, "retrieveEmails"},
      {retrievePanel->browseButton, "browseDatabase"},
      {retrievePanel->resetButton, "resetRetrieve"},
      {retrievePanel->resetTagsButton, "resetTagSearch"},
      {retrievePanel->sqlButton, "editSqlString"},
      {tagPanel->setTagsButton, "addTags"},
      {SQLPanel->runButton, "makeSQLString"},
      {SQLPanel->schemaButton, "showSchema"},
      {IdPanel->okButton, "gotID"},
      {IdPanel->cancelButton, "cancelID"},
      {storePanel->viewOrigButton, "viewOrig"}};
  for (const auto& item : pending) {
    QPushButton* button = item.first;
    connect(button, &QPushButton::clicked, this,
            [this, button] { notYetAvailable(button->text()); });
  }
}

void QuilleryController::awakeFromNib() {
  preferences_->getPrefs();

  storePanel->storeTableView->setShowGrid(true);
  frames_->setColumnAutosaveName(storePanel->storeTableView->horizontalHeader(),
                                 QStringLiteral("storeTableView"));
  applyListFont();
  storePanel->bodyTextView->setFont(prefs.currentFont);
  origWindow->origTextView->setFont(prefs.currentFont);

  tempDir = QDir::tempPath() + QStringLiteral("/quillery_") +
            QUuid::createUuid().toString(QUuid::WithoutBraces);
  QDir().mkpath(tempDir);

  const QList<QPair<QWidget*, const char*>> windows{
      {msWindow, "msWindow"},           {prefPanel, "prefPanel"},
      {retrievePanel, "retrievePanel"}, {tagPanel, "tagPanel"},
      {SQLPanel, "SQLPanel"},           {IdPanel, "IdPanel"},
      {ProgressPanel, "ProgressPanel"}, {origWindow, "origWindow"},
      {myHtmlWindow, "myHtmlWindow"},   {storeDatePanel, "storeDatePanel"}};
  for (const auto& [window, name] : windows)
    frames_->setFrameAutosaveName(window, QLatin1String(name));
  // The store panel fills the main window; what it keeps is its division of list and text.
  frames_->setSplitterAutosaveName(storePanel->splitter, QStringLiteral("storePanel"));
}

QString QuilleryController::dbPath() const {
  return preferences_->dbPath();
}

bool QuilleryController::applicationOpenFile(const QString& path) {
  preferences_->setDbPath(path);
  return true;
}

void QuilleryController::applicationWillTerminate() {
  // First, and also for a tool that has just ended unnoticed: the run commits what it stored
  // before saving reads the categories, which may reopen the archive and so roll it back.
  storeRun_->terminateParser();
  QStringList files = ingest::StorePaths::forArchive(dbPath()).workFiles();
  const ingest::StorePaths& lastRun = storeRun_->lastRunPaths();
  if (!lastRun.dbPath.isEmpty() && lastRun.dbPath != dbPath())
    files += lastRun.workFiles();
  for (const QString& file : std::as_const(files))
    ports_.files.remove(file);
  preferences_->savePreferences();
  frames_->saveAll();
}

bool QuilleryController::validateMenuItem(const QAction* item) const {
  const QString title = item->text();
  if (title == QLatin1String("this original email") ||
      title == QLatin1String("all original email in list"))
    return prefs.origState != 0;
  return true;
}

void QuilleryController::revalidateMenuItems() {
  for (QAction* action : std::as_const(menuActions))
    action->setEnabled(validateMenuItem(action));
}

void QuilleryController::doProgressPanel(const QString& title) {
  ProgressPanel->open(title);
}

void QuilleryController::doProgressCount(int count, int step) {
  ProgressPanel->doProgressCount(count, step);
}

void QuilleryController::setFont(const QFont& font) {
  storePanel->storeTableView->setFont(font);
  storePanel->storeTableView->viewport()->update();
}

void QuilleryController::applyListFont() {
  storePanel->applyListFont(prefs.currentFont);
}

void QuilleryController::changeFont(const QFont& font) {
  prefs.currentFont = font;
  storePanel->bodyTextView->setFont(font);
  applyListFont();
  origWindow->origTextView->setFont(font);
}

void QuilleryController::defaultFont() {
  if (fontPanel_ == nullptr) {
    fontPanel_ = new QFontDialog(msWindow);
    fontPanel_->setWindowTitle(tr("List Font"));
    connect(fontPanel_, &QFontDialog::fontSelected, this, &QuilleryController::changeFont);
  }
  fontPanel_->setCurrentFont(prefs.currentFont);
  fontPanel_->show();
  fontPanel_->raise();
  fontPanel_->activateWindow();
}

void QuilleryController::getPath() {
  platform::SavePanel panel;
  panel.canCreateDirectories = true;
  savePath = ports_.dialogs.runSavePanel(panel);
}

void QuilleryController::addCategoriesToPopUps() {
  addItemsWithTitles(retrievePanel->searchCatButton, categories.categoryList);
  addItemsWithTitles(tagPanel->setCatButton, categories.categoryList);
}

void QuilleryController::perform(QAction* item) {
  const QString name = item->objectName();
  if (name.startsWith(QLatin1String("window:"))) {
    orderFront(name.mid(7));
    return;
  }
  const QByteArray slot = name.toLatin1();
  if (metaObject()->indexOfSlot(slot + "()") >= 0) {
    QMetaObject::invokeMethod(this, slot.constData());
    return;
  }
  // The edit commands belong to whatever text the user is working in.
  static const QStringList kEditCommands{QStringLiteral("undo"),  QStringLiteral("redo"),
                                         QStringLiteral("cut"),   QStringLiteral("copy"),
                                         QStringLiteral("paste"), QStringLiteral("selectAll")};
  if (kEditCommands.contains(name)) {
    if (QWidget* focus = QApplication::focusWidget())
      QMetaObject::invokeMethod(focus, slot.constData());
    return;
  }
  notYetAvailable(item->text());
}

void QuilleryController::notYetAvailable(const QString& title) {
  QString command = title;
  command.remove(QChar(0x2026));
  ports_.dialogs.inform(QStringLiteral("Not Yet Available"),
                        QStringLiteral("\u201C%1\u201D is not yet available in this version of "
                                       "Quillery.")
                            .arg(command));
}

QWidget* QuilleryController::windowNamed(const QString& name) const {
  const QList<QWidget*> windows{msWindow, prefPanel, storeDatePanel, retrievePanel, tagPanel,
                                SQLPanel, IdPanel,   ProgressPanel,  origWindow,    myHtmlWindow};
  for (QWidget* window : windows) {
    if (window->objectName() == name)
      return window;
  }
  return nullptr;
}

void QuilleryController::orderFront(const QString& windowName) {
  if (QWidget* window = windowNamed(windowName)) {
    window->showNormal();
    window->raise();
    window->activateWindow();
  }
}

void QuilleryController::newDbPath() {
  preferences_->newDbPath();
}

void QuilleryController::openDbPath() {
  preferences_->openDbPath();
}

void QuilleryController::doPrefPanel() {
  preferences_->doPrefPanel();
}

void QuilleryController::savePreferences() {
  preferences_->savePreferences();
}

void QuilleryController::cancelPrefs() {
  preferences_->cancelPrefs();
}

void QuilleryController::setStoreDate() {
  storePreparation_->setStoreDate(dbPath());
}

void QuilleryController::openMbox() {
  storePreparation_->openMbox();
}

void QuilleryController::cancelStore() {
  storePreparation_->cancelStore();
}

void QuilleryController::parseEmail() {
  const ingest::StoreSwitches switches{prefs.allmbState != 0, prefs.attachState != 0,
                                       prefs.htmlState != 0,  prefs.trashState != 0,
                                       prefs.origState != 0,  prefs.mailboxesState != 0};
  const ingest::StoreSources sources{prefs.accountList, prefs.mailboxList};
  const std::optional<ingest::StoreRequest> request =
      storePreparation_->prepareRun(dbPath(), switches, storeDatePanel->range(), sources);
  if (request && storeRun_->start(*request))
    preferences_->setMailboxListingBlocked(true);
}

void QuilleryController::cancelParse() {
  storeRun_->cancelParse();
}

void QuilleryController::deleteFromList() {
  resultList_->deleteFromList(storePanel->selectedDisplayRows());
}

void QuilleryController::resetAll() {
  storeDatePanel->resetAll();
}

void QuilleryController::performClose() {
  if (QWidget* window = QApplication::activeWindow())
    window->close();
}

void QuilleryController::performMiniaturize() {
  if (QWidget* window = QApplication::activeWindow())
    window->showMinimized();
}

void QuilleryController::terminate() {
  Q_EMIT quitRequested();
}

void QuilleryController::about() {
  ports_.dialogs.inform(
      QStringLiteral("About Quillery"),
      QStringLiteral("Quillery %1\n\nStores years of e-mail in one SQLite archive file and "
                     "lets you search, read, tag and export it.")
          .arg(QCoreApplication::applicationVersion()));
}

}  // namespace quillery::app
