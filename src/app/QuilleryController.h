#pragma once

#include <QFont>
#include <QHash>
#include <QObject>
#include <QString>
#include <memory>

#include "app/StoredPreferences.h"
#include "archive/Archive.h"
#include "ingest/CurrentMessage.h"
#include "ingest/MailSources.h"
#include "ingest/StoreRunCounters.h"
#include "search/CategoryList.h"

class QAction;
class QComboBox;
class QFontDialog;

namespace quillery::platform {
class Dialogs;
class Files;
class Pasteboard;
class Settings;
class Workspace;
}  // namespace quillery::platform
namespace quillery::ingest {
class StorePreparation;
class StoreRun;
}  // namespace quillery::ingest
namespace quillery::search {
class ResultList;
}

namespace quillery::app {

class HtmlWindow;
class IdPanel;
class MainWindow;
class OrigWindow;
class Preferences;
class ProgressPanel;
class SearchPanel;
class SetupPanel;
class SqlPanel;
class StoreDatePanel;
class StorePanel;
class StorePanelBinding;
class TagPanel;
class WindowFrames;

// The desktop ports the application works through; a test hands in its fakes.
struct AppPorts {
  platform::Dialogs& dialogs;
  platform::Settings& settings;
  platform::Files& files;
  platform::Workspace& workspace;
  platform::Pasteboard& pasteboard;
};

// The application's one controller: it owns the windows, the shared objects and the feature
// objects, and carries every user action as a slot of the action's name. Each slot gathers
// what the user set in the windows and hands it to the feature; the windows follow the
// features through their signals. Menu items reach the slots by name (perform), so an action
// without a slot yet answers that it is not yet available.
class QuilleryController : public QObject {
  Q_OBJECT

 public:
  // Reads "USER" and "HOME", creates the shared objects and builds the windows. Nothing is
  // read from the preferences and no file is touched. toolsDir holds findmail and domail;
  // empty means the application's own folder.
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
  // The list font on the result table's cells; the table is redrawn.
  void setFont(const QFont& font);
  // The font panel's choice becomes the list font of the table and the two text views. It is
  // stored with the next save of the preferences.
  void changeFont(const QFont& font);
  // The shared save prompt: savePath becomes the chosen file, or "" when cancelled.
  void getPath();

  // Performs the action a menu item names.
  void perform(QAction* item);

  QString userName;
  QString homeDir;
  QString tempDir;
  QString savePath;
  QString dbPath() const;

  archive::Archive archive;
  StoredPreferences prefs;
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

 public Q_SLOTS:
  void newDbPath();
  void openDbPath();
  void doPrefPanel();
  void savePreferences();
  void cancelPrefs();
  void setStoreDate();
  void openMbox();
  void cancelStore();
  void parseEmail();
  void cancelParse();
  void deleteFromList();
  void resetAll();
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
  void applyListFont();
  void addCategoriesToPopUps();
  void orderFront(const QString& windowName);
  void notYetAvailable(const QString& title);
  QWidget* windowNamed(const QString& name) const;

  AppPorts ports_;
  std::unique_ptr<MainWindow> mainWindow_;
  std::unique_ptr<search::ResultList> resultList_;
  std::unique_ptr<ingest::StoreRun> storeRun_;
  std::unique_ptr<ingest::StorePreparation> storePreparation_;
  std::unique_ptr<Preferences> preferences_;
  std::unique_ptr<WindowFrames> frames_;
  std::unique_ptr<StorePanelBinding> storeBinding_;
  QFontDialog* fontPanel_ = nullptr;
};

}  // namespace quillery::app
