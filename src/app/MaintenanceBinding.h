#pragma once

#include <QObject>

#include "archive/maintenance/Backup.h"
#include "archive/maintenance/Compaction.h"
#include "archive/maintenance/DatabaseMerge.h"
#include "archive/maintenance/FormatConversion.h"
#include "archive/maintenance/Restore.h"

namespace quillery::app {

struct AppContext;

// Binds backing up, restoring, compacting, converting and merging archive files to the window: each
// method is the user action of the same name, called by the controller's slot of that name. A
// method gathers what the user set in the window, hands it to the feature and lets the window
// follow the feature's results.
class MaintenanceBinding : public QObject {
  Q_OBJECT

 public:
  explicit MaintenanceBinding(AppContext& context, QObject* parent = nullptr);

  void backupDB();
  void restoreDB();
  void compactDB();
  void convertDBFormat();
  void mergeDB();

 private:
  // The list window follows what the conversion and the merge tell it.
  void bindListWindow();

  AppContext& context_;
  maintenance::Backup backup_;
  maintenance::Restore restore_;
  maintenance::Compaction compaction_;
  maintenance::FormatConversion conversion_;
  maintenance::DatabaseMerge merge_;
};

}  // namespace quillery::app
