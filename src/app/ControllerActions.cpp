// The controller's user actions: the table through which menu items reach them, and the
// slots, most of them one line that hands the action to the binding of its area.
#include <QAction>
#include <QApplication>
#include <QCoreApplication>
#include <QWidget>

#include "app/ExportBinding.h"
#include "app/MaintenanceBinding.h"
#include "app/MessageViewBinding.h"
#include "app/Preferences.h"
#include "app/QuilleryController.h"
#include "app/SearchBinding.h"
#include "app/StoreDatePanel.h"
#include "app/StorePanel.h"
#include "ingest/StorePreparation.h"
#include "ingest/StoreRun.h"
#include "platform/Dialogs.h"
#include "search/ResultList.h"

namespace quillery::app {

const QHash<QString, QuilleryController::ActionSlot>& QuilleryController::actionSlots() {
  using C = QuilleryController;
  static const QHash<QString, ActionSlot> kSlots{
      {QStringLiteral("newDbPath"), &C::newDbPath},
      {QStringLiteral("openDbPath"), &C::openDbPath},
      {QStringLiteral("openMbox"), &C::openMbox},
      {QStringLiteral("openMailFolder"), &C::openMailFolder},
      {QStringLiteral("convertDBFormat"), &C::convertDBFormat},
      {QStringLiteral("performClose"), &C::performClose},
      {QStringLiteral("terminate"), &C::terminate},
      {QStringLiteral("deleteFromList"), &C::deleteFromList},
      {QStringLiteral("deleteSelected"), &C::deleteSelected},
      {QStringLiteral("deleteAll"), &C::deleteAll},
      {QStringLiteral("deleteAttachments"), &C::deleteAttachments},
      {QStringLiteral("tagEmail"), &C::tagEmail},
      {QStringLiteral("viewOrig"), &C::viewOrig},
      {QStringLiteral("replyToEmail"), &C::replyToEmail},
      {QStringLiteral("defaultFont"), &C::defaultFont},
      {QStringLiteral("doPrefPanel"), &C::doPrefPanel},
      {QStringLiteral("retrieveFromDB"), &C::retrieveFromDB},
      {QStringLiteral("browseDatabase"), &C::browseDatabase},
      {QStringLiteral("editSqlString"), &C::editSqlString},
      {QStringLiteral("showSchema"), &C::showSchema},
      {QStringLiteral("setStoreDate"), &C::setStoreDate},
      {QStringLiteral("backupDB"), &C::backupDB},
      {QStringLiteral("restoreDB"), &C::restoreDB},
      {QStringLiteral("compactDB"), &C::compactDB},
      {QStringLiteral("mergeDB"), &C::mergeDB},
      {QStringLiteral("exportMbox"), &C::exportMbox},
      {QStringLiteral("exportSQL"), &C::exportSQL},
      {QStringLiteral("exportDb"), &C::exportDb},
      {QStringLiteral("exportTab"), &C::exportTab},
      {QStringLiteral("saveSelected"), &C::saveSelected},
      {QStringLiteral("saveAll"), &C::saveAll},
      {QStringLiteral("saveList"), &C::saveList},
      {QStringLiteral("saveOrigSelected"), &C::saveOrigSelected},
      {QStringLiteral("saveOrigAll"), &C::saveOrigAll},
      {QStringLiteral("printSelected"), &C::printSelected},
      {QStringLiteral("printAll"), &C::printAll},
      {QStringLiteral("performMiniaturize"), &C::performMiniaturize},
      {QStringLiteral("about"), &C::about},
  };
  return kSlots;
}

void QuilleryController::perform(QAction* item) {
  const QString name = item->objectName();
  if (name.startsWith(QLatin1String("window:"))) {
    orderFront(name.mid(7));
    return;
  }
  if (const ActionSlot slot = actionSlots().value(name)) {
    (this->*slot)();
    return;
  }
  // The edit commands belong to whatever text the user is working in.
  static const QStringList kEditCommands{QStringLiteral("undo"),  QStringLiteral("redo"),
                                         QStringLiteral("cut"),   QStringLiteral("copy"),
                                         QStringLiteral("paste"), QStringLiteral("selectAll")};
  if (kEditCommands.contains(name)) {
    if (QWidget* focus = QApplication::focusWidget())
      QMetaObject::invokeMethod(focus, name.toLatin1().constData());
    return;
  }
  // Unreachable while every menu item has its slot (the controller's tests check it).
  qWarning("The menu item %s reaches no action.", qPrintable(name));
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

void QuilleryController::openMailFolder() {
  storePreparation_->openMailFolder();
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

void QuilleryController::retrieveFromDB() {
  searchBinding_->retrieveFromDB();
}

void QuilleryController::retrieveEmails() {
  searchBinding_->retrieveEmails();
}

void QuilleryController::browseDatabase() {
  searchBinding_->browseDatabase();
}

void QuilleryController::resetRetrieve() {
  searchBinding_->resetRetrieve();
}

void QuilleryController::resetTagSearch() {
  searchBinding_->resetTagSearch();
}

void QuilleryController::editSqlString() {
  searchBinding_->editSqlString();
}

void QuilleryController::makeSQLString() {
  searchBinding_->makeSQLString();
}

void QuilleryController::showSchema() {
  searchBinding_->showSchema();
}

void QuilleryController::deleteSelected() {
  searchBinding_->deleteSelected();
}

void QuilleryController::deleteAll() {
  searchBinding_->deleteAll();
}

void QuilleryController::deleteAttachments() {
  searchBinding_->deleteAttachments();
}

void QuilleryController::viewOrig() {
  messageBinding_->viewOrig();
}

void QuilleryController::replyToEmail() {
  messageBinding_->replyToEmail();
}

void QuilleryController::tagEmail() {
  messageBinding_->tagEmail();
}

void QuilleryController::addTags() {
  messageBinding_->addTags();
}

void QuilleryController::exportMbox() {
  exportBinding_->exportMbox();
}

void QuilleryController::exportSQL() {
  exportBinding_->exportSQL();
}

void QuilleryController::exportDb() {
  exportBinding_->exportDb();
}

void QuilleryController::exportTab() {
  exportBinding_->exportTab();
}

void QuilleryController::gotID() {
  exportBinding_->gotID();
}

void QuilleryController::cancelID() {
  exportBinding_->cancelID();
}

void QuilleryController::saveSelected() {
  exportBinding_->saveSelected();
}

void QuilleryController::saveAll() {
  exportBinding_->saveAll();
}

void QuilleryController::saveList() {
  exportBinding_->saveList();
}

void QuilleryController::saveOrigSelected() {
  exportBinding_->saveOrigSelected();
}

void QuilleryController::saveOrigAll() {
  exportBinding_->saveOrigAll();
}

void QuilleryController::printSelected() {
  exportBinding_->printSelected();
}

void QuilleryController::printAll() {
  exportBinding_->printAll();
}

void QuilleryController::backupDB() {
  maintenanceBinding_->backupDB();
}

void QuilleryController::restoreDB() {
  maintenanceBinding_->restoreDB();
}

void QuilleryController::compactDB() {
  maintenanceBinding_->compactDB();
}

void QuilleryController::convertDBFormat() {
  maintenanceBinding_->convertDBFormat();
}

void QuilleryController::mergeDB() {
  maintenanceBinding_->mergeDB();
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
