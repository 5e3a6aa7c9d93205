#pragma once

#include "platform/Dialogs.h"

class QWidget;

namespace quillery::platform {

// Alerts as QMessageBox, panels as QFileDialog, the print panel as QPrintDialog, all modal
// to the given parent window.
class QtDialogs : public Dialogs {
 public:
  explicit QtDialogs(QWidget* parent = nullptr) : parent_(parent) {}
  void setParent(QWidget* parent) { parent_ = parent; }

  int showAlert(const Alert& alert) override;
  QString runSavePanel(const SavePanel& panel) override;
  QStringList runOpenPanel(const OpenPanel& panel) override;
  bool runPrintPanel(QPrinter& printer) override;

 private:
  QWidget* parent_;
};

}  // namespace quillery::platform
