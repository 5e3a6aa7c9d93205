#include "app/MenuBarBuilder.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>
#include <QMenuBar>
#include <vector>

namespace quillery::app {

namespace {

// action == nullptr is a separator. keys is a portable key text, or empty.
struct Item {
  const char* action;
  const char* title;
  const char* keys = "";
  const char* toolbarText = "";
};

struct Menu {
  const char* title;
  std::vector<Item> items;
};

const Item kSeparator{nullptr, ""};

const std::vector<Menu>& menus() {
  static const std::vector<Menu> kMenus{
      {"&File",
       {{"newDbPath", "New Archive File…", "Ctrl+N"},
        {"openDbPath", "Open Archive File…", "Ctrl+O"},
        kSeparator,
        {"openMbox", "Import MBOX Files…", "Ctrl+I", "Import Mbox"},
        {"openMailFolder", "Import Mail Folder…", "Ctrl+Shift+O"},
        kSeparator,
        {"convertDBFormat", "Convert Database to New Format"},
        kSeparator,
        {"performClose", "Close Window", "Ctrl+W"},
        {"terminate", "Quit Quillery", "Ctrl+Q"}}},
      {"&Edit",
       {{"undo", "Undo", "Ctrl+Z"},
        {"redo", "Redo", "Ctrl+Shift+Z"},
        kSeparator,
        {"cut", "Cut", "Ctrl+X"},
        {"copy", "Copy", "Ctrl+C"},
        {"paste", "Paste", "Ctrl+V"},
        {"selectAll", "Select All", "Ctrl+A"},
        kSeparator,
        {"deleteFromList", "Remove from List", "Del"},
        {"deleteSelected", "Delete Selected Email from Archive…", "Ctrl+Del"},
        {"deleteAll", "Delete All Email in List from Archive…"},
        {"deleteAttachments", "Delete Attachments of Selected Email…"},
        kSeparator,
        {"tagEmail", "Tag Email…", "Ctrl+T", "Tag"},
        {"viewOrig", "View Original Source", "Ctrl+U", "View Source"},
        {"replyToEmail", "Reply", "Ctrl+R", "Reply"},
        kSeparator,
        {"defaultFont", "List Font…", "Ctrl+Shift+T"},
        {"doPrefPanel", "Preferences…", "Ctrl+,", "Setup"}}},
      {"&Database",
       {{"retrieveFromDB", "Search…", "Ctrl+F", "Search"},
        {"browseDatabase", "Browse Database", "Ctrl+B", "Browse"},
        {"editSqlString", "SQL Query…", "Ctrl+Shift+F"},
        {"showSchema", "Show Schema"},
        kSeparator,
        {"setStoreDate", "Store Email…", "Ctrl+Shift+I", "Store Email"},
        kSeparator,
        {"backupDB", "Back Up Database"},
        {"restoreDB", "Restore Database from Backup…"},
        {"compactDB", "Compact Database"},
        {"mergeDB", "Merge Another Database…"}}},
      {"E&xport",
       {{"exportMbox", "Mbox File…"},
        {"exportSQL", "SQL Script for MySQL…"},
        {"exportDb", "Archive File…"},
        {"exportTab", "Tab-Delimited Text…"}}},
      {"&Save",
       {{"saveSelected", "Selected Email…", "Ctrl+S"},
        {"saveAll", "All Email in List…", "Ctrl+Shift+S"},
        {"saveList", "List…"},
        kSeparator,
        {"saveOrigSelected", "this original email"},
        {"saveOrigAll", "all original email in list"}}},
      {"&Print",
       {{"printSelected", "Selected Email…", "Ctrl+P"},
        {"printAll", "All Email in List…", "Ctrl+Shift+P"}}},
      {"&Window",
       {{"performMiniaturize", "Minimize", "Ctrl+M"},
        kSeparator,
        {"window:msWindow", "Quillery", "Ctrl+1"},
        {"window:origWindow", "Message Source"},
        {"window:myHtmlWindow", "HTML View"},
        {"window:tagPanel", "Tags"},
        {"window:SQLPanel", "SQL Query"},
        {"window:ProgressPanel", "Progress"}}},
      {"&Help", {{"about", "About Quillery"}}},
  };
  return kMenus;
}

}  // namespace

QHash<QString, QAction*> MenuBarBuilder::build(QMenuBar* bar,
                                               const std::function<void(QAction*)>& bind) {
  QHash<QString, QAction*> actions;
  for (const Menu& menu : menus()) {
    QMenu* m = bar->addMenu(QString::fromUtf8(menu.title));
    for (const Item& item : menu.items) {
      if (item.action == nullptr) {
        m->addSeparator();
        continue;
      }
      QAction* action = m->addAction(QString::fromUtf8(item.title));
      action->setObjectName(QString::fromUtf8(item.action));
      if (item.keys[0] != '\0')
        action->setShortcut(QKeySequence(QString::fromLatin1(item.keys)));
      if (item.toolbarText[0] != '\0')
        action->setIconText(QString::fromUtf8(item.toolbarText));
      actions.insert(action->objectName(), action);
      bind(action);
    }
  }
  return actions;
}

}  // namespace quillery::app
