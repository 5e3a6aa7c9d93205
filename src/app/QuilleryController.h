#pragma once

#include <QFont>
#include <QHash>
#include <QObject>
#include <QString>
#include <memory>

#include "app/AppContext.h"
#include "archive/Archive.h"
#include "ingest/CurrentMessage.h"
#include "ingest/MailSources.h"
#include "ingest/StoreRunCounters.h"
#include "prefs/StoredPreferences.h"
#include "search/CategoryList.h"

class QAction;
class QComboBox;
class QFontDialog;

namespace quillery::ingest {
class StorePreparation;
class StoreRun;
}  // namespace quillery::ingest
namespace quillery::search {
class ResultList;
}

namespace quillery::app {

class ExportBinding;
class HtmlWindow;
class IdPanel;
class MainWindow;
class MaintenanceBinding;
class MessageViewBinding;
class OrigWindow;
class Preferences;
class ProgressPanel;
class SearchBinding;
class SearchPanel;
class SetupPanel;
class SqlPanel;
class StoreDatePanel;
class StorePanel;
class StorePanelBinding;
class TagPanel;
class WindowFrames;

// The application's one controller: it owns the windows, the shared objects and, per area of
// the window, a binding that carries that area's user actions. Every user action is a slot of
// the action's name; a slot that belongs to an area is one line that calls the binding.
// Menu items reach the slots through a table of member pointers (actionSlots), so an item
// cannot name an action that does not exist.
class QuilleryController : public QObject {
  Q_OBJECT

 public:
  using ActionSlot = void (QuilleryController::*)();

  // Reads "HOME", creates the shared objects and builds the windows. Nothing is read from the
  // preferences and no file is touched. toolsDir holds findmail and domail; empty means the
  // application's own folder.
  explicit QuilleryController(AppPorts ports, const QString& toolsDir = QString(),
                              QObject* parent = nullptr);
  ~QuilleryController() override;

  // Reads the preferences, sets up the list, creates the temporary folder "quillery_<unique>"
  // in the system's temporary folder (a failure is ignored) and restores window frames.
  void awakeFromNib();

  // A file handed over by the desktop (or named on the command line) becomes the archive
  // path and is saved; it is not opened until an action needs the archive.
  bool applicationOpenFile(const QString& path);
  // Quitting: stops a running parser tool and commits what it stored, deletes the store
  // run's three temporary files beside the archive and, when this session's run used another
  // archive path, beside that one too (failures ignored), then saves the preferences and the
  // window frames.
  void applicationWillTerminate();

  // "this original email" and "all original email in list" are enabled only while message
  // sources are kept (origState); every other item always.
  bool validateMenuItem(const QAction* item) const;
  void revalidateMenuItems();

  void doProgressPanel(const QString& title);
  void doProgressCount(int count, int step);
  // The font panel's choice becomes the list font of the table and the two text views. It is
  // stored with the next save of the preferences.
  void changeFont(const QFont& font);
  // The list font as a font of the desktop.
  QFont currentFont() const;

  // The slot that each menu action name reaches; items named "window:<name>" bring that
  // window to the front and the edit commands go to the focused text instead.
  static const QHash<QString, ActionSlot>& actionSlots();
  // Performs the action a menu item names.
  void perform(QAction* item);

  QString homeDir;
  QString tempDir;
  const QString& dbPath() const { return prefs.dbPath; }

  archive::Archive archive;
  prefs::StoredPreferences prefs;
  search::CategoryList categories;
  ingest::MailSources mailSources;
  ingest::CurrentMessage message;
  ingest::StoreRunCounters counters;

  // The windows and panels; the named controls are members of each.
  MainWindow* msWindow;
  StorePanel* storePanel;
  SetupPanel* prefPanel;
  StoreDatePanel* storeDatePanel;
  SearchPanel* retrievePanel;
  TagPanel* tagPanel;
  SqlPanel* SQLPanel;
  app::IdPanel* IdPanel;
  app::ProgressPanel* ProgressPanel;
  OrigWindow* origWindow;
  HtmlWindow* myHtmlWindow;
  QAction* mySaveOrigSelected = nullptr;
  QAction* mySaveOrigAll = nullptr;
  QHash<QString, QAction*> menuActions;

  search::ResultList& resultList() { return *resultList_; }
  ingest::StoreRun& storeRun() { return *storeRun_; }
  Preferences& preferences() { return *preferences_; }
  AppContext& context() { return *context_; }

 public Q_SLOTS:
  // The archive file, the preferences and the store run.
  void newDbPath();
  void openDbPath();
  void doPrefPanel();
  void savePreferences();
  void cancelPrefs();
  void setStoreDate();
  void openMbox();
  void openMailFolder();
  void cancelStore();
  void parseEmail();
  void cancelParse();
  void resetAll();
  void deleteFromList();
  // Search, the SQL query panel and deletion.
  void retrieveFromDB();
  void retrieveEmails();
  void browseDatabase();
  void resetRetrieve();
  void resetTagSearch();
  void editSqlString();
  void makeSQLString();
  void showSchema();
  void deleteSelected();
  void deleteAll();
  void deleteAttachments();
  // The message view and tags.
  void viewOrig();
  void replyToEmail();
  void tagEmail();
  void addTags();
  // Exports, text saves and printing.
  void exportMbox();
  void exportSQL();
  void exportDb();
  void exportTab();
  void gotID();
  void cancelID();
  void saveSelected();
  void saveAll();
  void saveList();
  void saveOrigSelected();
  void saveOrigAll();
  void printSelected();
  void printAll();
  // Looking after the archive file.
  void backupDB();
  void restoreDB();
  void compactDB();
  void convertDBFormat();
  void mergeDB();
  // The application.
  void defaultFont();
  void performClose();
  void performMiniaturize();
  void terminate();
  void about();

 Q_SIGNALS:
  // The user asked to quit, or closed the main window.
  void quitRequested();

 private:
  void buildInterface();
  void bindPanels();
  void bindAreaButtons();
  void applyListFont();
  void addCategoriesToPopUps();
  void orderFront(const QString& windowName);
  QWidget* windowNamed(const QString& name) const;

  AppPorts ports_;
  std::unique_ptr<MainWindow> mainWindow_;
  std::unique_ptr<search::ResultList> resultList_;
  std::unique_ptr<ingest::StoreRun> storeRun_;
  std::unique_ptr<ingest::StorePreparation> storePreparation_;
  std::unique_ptr<Preferences> preferences_;
  std::unique_ptr<WindowFrames> frames_;
  std::unique_ptr<AppContext> context_;
  std::unique_ptr<StorePanelBinding> storeBinding_;
  std::unique_ptr<SearchBinding> searchBinding_;
  std::unique_ptr<MessageViewBinding> messageBinding_;
  std::unique_ptr<ExportBinding> exportBinding_;
  std::unique_ptr<MaintenanceBinding> maintenanceBinding_;
  QFontDialog* fontPanel_ = nullptr;
};

}  // namespace quillery::app
