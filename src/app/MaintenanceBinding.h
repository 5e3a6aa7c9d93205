#pragma once

#include <QObject>

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
  AppContext& context_;
};

}  // namespace quillery::app
