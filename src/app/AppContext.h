#pragma once

#include <QString>
#include <functional>

namespace quillery::platform {
class Dialogs;
class Files;
class Pasteboard;
class Settings;
class Workspace;
}  // namespace quillery::platform
namespace quillery::archive {
class Archive;
}
namespace quillery::prefs {
class StoredPreferences;
}
namespace quillery::search {
class CategoryList;
class ResultList;
}  // namespace quillery::search

namespace quillery::app {

class HtmlWindow;
class IdPanel;
class MainWindow;
class OrigWindow;
class Preferences;
class ProgressPanel;
class SearchPanel;
class SqlPanel;
class StorePanel;
class TagPanel;

// The desktop ports the application works through; a test hands in its fakes.
struct AppPorts {
  platform::Dialogs& dialogs;
  platform::Settings& settings;
  platform::Files& files;
  platform::Workspace& workspace;
  platform::Pasteboard& pasteboard;
};

// What the binding of one area of the window works with: the ports, the shared objects that
// the controller owns, and the windows and panels. The controller makes it once, after the
// windows and before the bindings, and it lives as long as the controller.
struct AppContext {
  AppPorts ports;
  archive::Archive& archive;
  search::ResultList& resultList;
  search::CategoryList& categories;
  // The preference values (the archive path, backupPath, the switches, ...) and the
  // preferences at work (savePreferences, which the backup calls).
  prefs::StoredPreferences& prefs;
  Preferences& preferences;
  // The per-run temporary folder; set once the application has started.
  const QString& tempDir;

  MainWindow& msWindow;
  StorePanel& storePanel;
  SearchPanel& retrievePanel;
  TagPanel& tagPanel;
  SqlPanel& SQLPanel;
  app::IdPanel& IdPanel;
  app::ProgressPanel& ProgressPanel;
  OrigWindow& origWindow;
  HtmlWindow& myHtmlWindow;

  // Tells the user that the action of this name is not yet available in this version.
  std::function<void(const char* action)> notYetAvailable;
};

}  // namespace quillery::app
