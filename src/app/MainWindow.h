#pragma once

#include <QMainWindow>

class QAction;

namespace quillery::app {

class StorePanel;

// The main window: the menu bar, a toolbar with the everyday commands, and the store and
// list panel filling the rest. Its title follows the panel's ("done storing email in ...").
// Closing it ends the application, which the controller learns through closed().
class MainWindow : public QMainWindow {
  Q_OBJECT

 public:
  explicit MainWindow(QWidget* parent = nullptr);

  StorePanel* storePanel() const { return storePanel_; }
  // Adds these actions (nullptr for a separator) to the toolbar, shown by their icon text.
  void setToolBarActions(const QList<QAction*>& actions);

 Q_SIGNALS:
  void closed();

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void followPanelTitle(const QString& title);

  StorePanel* storePanel_;
};

}  // namespace quillery::app
