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

#include "app/ExportBinding.h"
#include "app/HtmlWindow.h"
#include "app/IdPanel.h"
#include "app/ListFont.h"
#include "app/MainWindow.h"
#include "app/MaintenanceBinding.h"
#include "app/MenuBarBuilder.h"
#include "app/MessageViewBinding.h"
#include "app/OrigWindow.h"
#include "app/Preferences.h"
#include "app/ProgressPanel.h"
#include "app/SearchBinding.h"
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
  context_ = std::make_unique<AppContext>(
      AppContext{ports_, archive, *resultList_, categories, prefs, *preferences_, tempDir,
                 *msWindow, *storePanel, *retrievePanel, *tagPanel, *SQLPanel, *IdPanel,
                 *ProgressPanel, *origWindow, *myHtmlWindow});
  searchBinding_ = std::make_unique<SearchBinding>(*context_);
  messageBinding_ = std::make_unique<MessageViewBinding>(*context_);
  exportBinding_ = std::make_unique<ExportBinding>(*context_);
  maintenanceBinding_ = std::make_unique<MaintenanceBinding>(*context_);
  storeBinding_ = std::make_unique<StorePanelBinding>(*msWindow, *storeDatePanel, *SQLPanel,
                                                      *resultList_, *storePreparation_, *storeRun_);
  connect(storeBinding_.get(), &StorePanelBinding::listFontWanted, this,
          &QuilleryController::applyListFont);
  connect(storeRun_.get(), &ingest::StoreRun::finished, this,
          [this] { preferences_->setMailboxListingBlocked(false); });
  bindPanels();
}

QuilleryController::~QuilleryController() {
  // The bindings and windows go first: they read the shared objects until they are gone.
  maintenanceBinding_.reset();
  exportBinding_.reset();
  messageBinding_.reset();
  searchBinding_.reset();
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
  ProgressPanel = new app::ProgressPanel(*storePanel, msWindow);
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
  connect(storePanel, &StorePanel::cancelRequested, this, &QuilleryController::cancelParse);

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

  bindAreaButtons();
}

void QuilleryController::bindAreaButtons() {
  const QList<QPair<QPushButton*, ActionSlot>> buttons{
      {retrievePanel->searchButton, &QuilleryController::retrieveEmails},
      {retrievePanel->browseButton, &QuilleryController::browseDatabase},
      {retrievePanel->resetButton, &QuilleryController::resetRetrieve},
      {retrievePanel->resetTagsButton, &QuilleryController::resetTagSearch},
      {retrievePanel->sqlButton, &QuilleryController::editSqlString},
      {tagPanel->setTagsButton, &QuilleryController::addTags},
      {SQLPanel->runButton, &QuilleryController::makeSQLString},
      {SQLPanel->schemaButton, &QuilleryController::showSchema},
      {IdPanel->okButton, &QuilleryController::gotID},
      {IdPanel->cancelButton, &QuilleryController::cancelID},
      {storePanel->viewOrigButton, &QuilleryController::viewOrig}};
  for (const auto& [button, slot] : buttons)
    connect(button, &QPushButton::clicked, this, slot);
}

void QuilleryController::awakeFromNib() {
  preferences_->getPrefs();

  storePanel->storeTableView->setShowGrid(true);
  frames_->setColumnAutosaveName(storePanel->storeTableView->horizontalHeader(),
                                 QStringLiteral("storeTableView"));
  applyListFont();
  storePanel->bodyTextView->setFont(currentFont());
  origWindow->origTextView->setFont(currentFont());

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

QFont QuilleryController::currentFont() const {
  return ListFont::toFont(prefs.currentFont);
}

void QuilleryController::applyListFont() {
  storePanel->applyListFont(currentFont());
}

void QuilleryController::changeFont(const QFont& font) {
  prefs.currentFont = ListFont::describe(font);
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
  fontPanel_->setCurrentFont(currentFont());
  fontPanel_->show();
  fontPanel_->raise();
  fontPanel_->activateWindow();
}

void QuilleryController::addCategoriesToPopUps() {
  addItemsWithTitles(retrievePanel->searchCatButton, categories.categoryList);
  addItemsWithTitles(tagPanel->setCatButton, categories.categoryList);
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

}  // namespace quillery::app
