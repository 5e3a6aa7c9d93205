#include "app/ExportBinding.h"

#include "app/AppContext.h"

namespace quillery::app {

ExportBinding::ExportBinding(AppContext& context, QObject* parent)
    : QObject(parent), context_(context) {}

void ExportBinding::exportMbox() {
  context_.notYetAvailable("exportMbox");
}

void ExportBinding::exportSQL() {
  context_.notYetAvailable("exportSQL");
}

void ExportBinding::exportDb() {
  context_.notYetAvailable("exportDb");
}

void ExportBinding::exportTab() {
  context_.notYetAvailable("exportTab");
}

void ExportBinding::gotID() {
  context_.notYetAvailable("gotID");
}

void ExportBinding::cancelID() {
  context_.notYetAvailable("cancelID");
}

void ExportBinding::saveSelected() {
  context_.notYetAvailable("saveSelected");
}

void ExportBinding::saveAll() {
  context_.notYetAvailable("saveAll");
}

void ExportBinding::saveList() {
  context_.notYetAvailable("saveList");
}

void ExportBinding::saveOrigSelected() {
  context_.notYetAvailable("saveOrigSelected");
}

void ExportBinding::saveOrigAll() {
  context_.notYetAvailable("saveOrigAll");
}

void ExportBinding::printSelected() {
  context_.notYetAvailable("printSelected");
}

void ExportBinding::printAll() {
  context_.notYetAvailable("printAll");
}

}  // namespace quillery::app
