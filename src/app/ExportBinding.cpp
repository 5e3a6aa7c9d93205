#include "app/ExportBinding.h"

#include <QLineEdit>
#include <QPrinter>
#include <QTextBrowser>

#include "app/AppContext.h"
#include "app/IdPanel.h"
#include "app/ProgressPanel.h"
#include "app/StorePanel.h"
#include "export/ArchiveExporter.h"
#include "export/MboxExporter.h"
#include "export/SqlDumpExporter.h"
#include "export/TabExporter.h"
#include "platform/Dialogs.h"
#include "prefs/StoredPreferences.h"
#include "search/ResultList.h"
#include "text/LeadingInt.h"

namespace quillery::app {

ExportBinding::ExportBinding(AppContext& context, QObject* parent)
    : QObject(parent),
      context_(context),
      ports_{context.archive, context.resultList, context.ports.dialogs, context.ProgressPanel},
      saver_(ports_) {}

ExportBinding::~ExportBinding() = default;

bool ExportBinding::archiveReady() {
  // A store run's transaction must not be committed half way by an export's own; and the
  // connection that the list was read on may have been closed since (saving the preferences
  // reads the categories and closes it).
  return !context_.archive.storeRunUnderWay && context_.resultList.reopenListedArchive();
}

void ExportBinding::exportMbox() {
  if (archiveReady())
    exporting::MboxExporter(ports_, exportPath).exportMbox();
}

void ExportBinding::exportSQL() {
  if (archiveReady())
    exporting::SqlDumpExporter(ports_, exportPath)
        .exportSQL([this] { return askFirstId(); }, context_.prefs.origState != 0);
}

void ExportBinding::exportDb() {
  if (archiveReady())
    exporting::ArchiveExporter(ports_, exportPath).exportDb(context_.prefs.origState != 0);
}

void ExportBinding::exportTab() {
  if (archiveReady())
    exporting::TabExporter(ports_, exportPath).exportTab(context_.prefs.origState != 0);
}

std::optional<int> ExportBinding::askFirstId() {
  if (context_.IdPanel.exec() != 1)
    return std::nullopt;
  return text::leadingInt(context_.IdPanel.idTextField->text());
}

void ExportBinding::gotID() {
  if (context_.IdPanel.idTextField->text().isEmpty())
    return;  // the panel stays up until a number is given or it is cancelled
  context_.IdPanel.done(1);
}

void ExportBinding::cancelID() {
  context_.IdPanel.done(0);
}

void ExportBinding::getPath() {
  platform::SavePanel panel;
  panel.canCreateDirectories = true;
  savePath = context_.ports.dialogs.runSavePanel(panel);
}

void ExportBinding::saveSelected() {
  if (!archiveReady())
    return;
  getPath();
  saver_.saveSelected(savePath, context_.storePanel.selectedDisplayRows());
}

void ExportBinding::saveAll() {
  if (!archiveReady())
    return;
  getPath();
  saver_.saveAll(savePath);
}

void ExportBinding::saveList() {
  getPath();
  saver_.saveList(savePath);
}

void ExportBinding::saveOrigSelected() {
  if (!archiveReady())
    return;
  getPath();
  saver_.saveOrigSelected(savePath, context_.storePanel.selectedDisplayRows());
}

void ExportBinding::saveOrigAll() {
  if (!archiveReady())
    return;
  getPath();
  saver_.saveOrigAll(savePath);
}

void ExportBinding::printSelected() {
  print(false);
}

void ExportBinding::printAll() {
  print(true);
}

void ExportBinding::print(bool all) {
  if (!archiveReady())
    return;
  const std::optional<QString> text =
      saver_.printText(all ? QList<int>() : context_.storePanel.selectedDisplayRows(), all);
  if (!text)
    return;
  QTextBrowser& view = *context_.storePanel.bodyTextView;
  view.setPlainText(*text);
  QPrinter printer;
  if (context_.ports.dialogs.runPrintPanel(printer))
    view.print(&printer);
  view.setPlainText(saver_.rowText);
}

}  // namespace quillery::app
