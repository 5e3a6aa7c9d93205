#include "app/MaintenanceBinding.h"

#include "app/AppContext.h"

namespace quillery::app {

MaintenanceBinding::MaintenanceBinding(AppContext& context, QObject* parent)
    : QObject(parent), context_(context) {}

void MaintenanceBinding::backupDB() {
  context_.notYetAvailable("backupDB");
}

void MaintenanceBinding::restoreDB() {
  context_.notYetAvailable("restoreDB");
}

void MaintenanceBinding::compactDB() {
  context_.notYetAvailable("compactDB");
}

void MaintenanceBinding::convertDBFormat() {
  context_.notYetAvailable("convertDBFormat");
}

void MaintenanceBinding::mergeDB() {
  context_.notYetAvailable("mergeDB");
}

}  // namespace quillery::app
