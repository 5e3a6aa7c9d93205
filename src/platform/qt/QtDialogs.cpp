#include "platform/qt/QtDialogs.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPushButton>

namespace quillery::platform {

int QtDialogs::showAlert(const Alert& alert) {
  QMessageBox box(parent_);
  box.setIcon(alert.style == AlertStyle::Critical ? QMessageBox::Critical
                                                  : QMessageBox::Information);
  box.setWindowTitle(alert.title.isEmpty() ? QStringLiteral("Quillery") : alert.title);
  box.setTextFormat(Qt::PlainText);
  if (alert.title.isEmpty()) {
    box.setText(alert.message);
  } else {
    box.setText(alert.title);
    box.setInformativeText(alert.message);
  }

  const QStringList buttons =
      alert.buttons.isEmpty() ? QStringList{QStringLiteral("OK")} : alert.buttons;
  QList<QAbstractButton*> made;
  for (int i = 0; i < buttons.size(); ++i) {
    const auto role = i == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
    QPushButton* b = box.addButton(buttons[i], role);
    if (i == 0)
      box.setDefaultButton(b);
    made.append(b);
  }
  box.exec();
  const int index = static_cast<int>(made.indexOf(box.clickedButton()));
  // Closing the window without a button counts as the last (the cancelling) button.
  return index < 0 ? static_cast<int>(buttons.size()) - 1 : index;
}

QString QtDialogs::runSavePanel(const SavePanel& panel) {
  QFileDialog dialog(parent_, panel.title, panel.directory);
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setFileMode(QFileDialog::AnyFile);
  if (!panel.fileName.isEmpty())
    dialog.selectFile(panel.fileName);
  if (!panel.canCreateDirectories)
    dialog.setOption(QFileDialog::ReadOnly, true);
  if (!panel.prompt.isEmpty())
    dialog.setLabelText(QFileDialog::Accept, panel.prompt);
  if (!panel.nameFieldLabel.isEmpty())
    dialog.setLabelText(QFileDialog::FileName, panel.nameFieldLabel);
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
    return {};
  return panel.withRequiredFileType(dialog.selectedFiles().constFirst());
}

QStringList QtDialogs::runOpenPanel(const OpenPanel& panel) {
  QFileDialog dialog(parent_, panel.title);
  dialog.setAcceptMode(QFileDialog::AcceptOpen);
  dialog.setFileMode(panel.filesOnly ? (panel.multipleSelection ? QFileDialog::ExistingFiles
                                                                : QFileDialog::ExistingFile)
                                     : QFileDialog::Directory);
  if (!panel.prompt.isEmpty())
    dialog.setLabelText(QFileDialog::Accept, panel.prompt);
  if (dialog.exec() != QDialog::Accepted)
    return {};
  return dialog.selectedFiles();
}

bool QtDialogs::runPrintPanel(QPrinter& printer) {
  QPrintDialog dialog(&printer, parent_);
  return dialog.exec() == QDialog::Accepted;
}

}  // namespace quillery::platform
