#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <functional>

class QAction;
class QMenuBar;

namespace quillery::app {

// The application's menus: File, Edit, Database, Export, Save, Print, Window and Help, which
// between them reach every action of the application. Each item's QAction carries the name of
// the action it performs as its objectName ("exportMbox", "saveOrigAll", "window:origWindow"
// for an item that brings a window to the front) and is handed to `bind` once.
class MenuBarBuilder {
 public:
  // Fills the bar and returns its actions by name.
  static QHash<QString, QAction*> build(QMenuBar* bar, const std::function<void(QAction*)>& bind);
};

}  // namespace quillery::app
