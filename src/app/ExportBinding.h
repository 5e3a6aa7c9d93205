#pragma once

#include <QObject>
#include <QString>
#include <memory>

#include "export/ExportPorts.h"
#include "export/TextSaver.h"

namespace quillery::app {

struct AppContext;

// Binds the exports, the id panel of the SQL script, the text saves and printing to the
// window: each method is the user action of the same name, called by the controller's slot
// of that name. An export works on the result list and the archive connection that the last
// search or store run left open; it asks for its file itself, and for the text saves the
// shared save prompt (getPath) asks. Printing prints the message view after putting the text
// of the messages into it, and leaves the last message's text there.
class ExportBinding : public QObject {
  Q_OBJECT

 public:
  explicit ExportBinding(AppContext& context, QObject* parent = nullptr);
  ~ExportBinding() override;

  void exportMbox();
  void exportSQL();
  void exportDb();
  void exportTab();
  // The id panel's buttons: accept (only with a number entered) and cancel.
  void gotID();
  void cancelID();
  void saveSelected();
  void saveAll();
  void saveList();
  void saveOrigSelected();
  void saveOrigAll();
  void printSelected();
  void printAll();

  // The shared save prompt: a save panel that may create folders; savePath becomes the
  // chosen file, or "" when the user cancelled.
  void getPath();

  // The chosen path of the last structured export, and of the last text save.
  QString exportPath;
  QString savePath;

 private:
  // Whether the listed messages can be read now: no store run holds the archive, and the
  // archive of the list is open (opened again when something closed it).
  bool archiveReady();
  // Runs the id panel modally: the starting number, or nothing when cancelled.
  std::optional<int> askFirstId();
  void print(bool all);

  AppContext& context_;
  exporting::ExportPorts ports_;
  // Keeps the text block read last from one save or print to the next, as the message
  // view shows it after printing.
  exporting::TextSaver saver_;
};

}  // namespace quillery::app
