#include "app/MaintenanceBinding.h"

#include <QTextBrowser>

#include "app/AppContext.h"
#include "app/MainWindow.h"
#include "app/Preferences.h"
#include "app/ProgressPanel.h"
#include "app/StorePanel.h"
#include "prefs/StoredPreferences.h"

namespace quillery::app {

MaintenanceBinding::MaintenanceBinding(AppContext& context, QObject* parent)
    : QObject(parent),
      context_(context),
      backup_(context.archive, context.ports.dialogs, context.ports.files, context.ProgressPanel),
      restore_(context.archive, context.ports.dialogs, context.ports.files, context.ProgressPanel),
      compaction_(context.archive, context.ProgressPanel),
      // A store run's log is closed whenever a conversion can run (not during a run), so a
      // count that cannot be stored is reported on standard error.
      conversion_(context.archive, context.resultList, context.ports.dialogs,
                  context.ProgressPanel),
      merge_(context.archive, context.resultList, context.ports.dialogs, context.ProgressPanel) {
  bindListWindow();
}

void MaintenanceBinding::bindListWindow() {
  StorePanel& panel = context_.storePanel;
  // The list window is part of the main window and can't close: it drops its title instead.
  const auto closePanel = [&panel] { panel.setWindowTitle(QString()); };
  connect(&conversion_, &maintenance::FormatConversion::storePanelClosed, this, closePanel);
  connect(&merge_, &maintenance::DatabaseMerge::storePanelClosed, this, closePanel);
  connect(&conversion_, &maintenance::FormatConversion::messageViewCleared, panel.bodyTextView,
          &QTextBrowser::clear);
  connect(&merge_, &maintenance::DatabaseMerge::messageViewCleared, panel.bodyTextView,
          &QTextBrowser::clear);
  connect(&merge_, &maintenance::DatabaseMerge::storePanelTitleChanged, &panel,
          &QWidget::setWindowTitle);
  connect(&merge_, &maintenance::DatabaseMerge::storePanelShown, this, [this] {
    context_.msWindow.show();
    context_.msWindow.raise();
  });
}

void MaintenanceBinding::backupDB() {
  backup_.backupDB(context_.prefs.dbPath, context_.prefs.backupPath,
                   [this] { context_.preferences.savePreferences(); });
}

void MaintenanceBinding::restoreDB() {
  restore_.restoreDB(context_.prefs.dbPath, context_.prefs.backupPath);
}

void MaintenanceBinding::compactDB() {
  compaction_.compactDB(context_.prefs.dbPath);
}

void MaintenanceBinding::convertDBFormat() {
  conversion_.convertDBFormat(context_.prefs.dbPath);
}

void MaintenanceBinding::mergeDB() {
  merge_.mergeDB(context_.prefs.dbPath);
}

}  // namespace quillery::app
