#pragma once

#include <QObject>

namespace quillery::app {

struct AppContext;

// Binds the exports, the id panel of the SQL script, the text saves and printing to the window:
// each method is the user action of the same name, called by the controller's slot of that name. A
// method gathers what the user set in the window, hands it to the feature and lets the window
// follow the feature's results.
class ExportBinding : public QObject {
  Q_OBJECT

 public:
  explicit ExportBinding(AppContext& context, QObject* parent = nullptr);

  void exportMbox();
  void exportSQL();
  void exportDb();
  void exportTab();
  void gotID();
  void cancelID();
  void saveSelected();
  void saveAll();
  void saveList();
  void saveOrigSelected();
  void saveOrigAll();
  void printSelected();
  void printAll();

 private:
  AppContext& context_;
};

}  // namespace quillery::app
