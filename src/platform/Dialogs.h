#pragma once

#include <QString>
#include <QStringList>

class QPrinter;

namespace quillery::platform {

enum class AlertStyle { Informational, Critical };

// One alert panel as the user sees it. The first button is the default one; an alert
// without buttons shows a single "OK".
struct Alert {
  AlertStyle style = AlertStyle::Informational;
  QString title;
  QString message;
  QStringList buttons;
};

// What a save panel offers. An empty directory, file name, prompt or label means no preset.
// With a required file type the chosen name always ends in "." and that type: the panel
// appends it to a name that does not (so "Mail.sql.old" becomes "Mail.sql.old.sql").
struct SavePanel {
  QString title;
  QString directory;
  QString fileName;
  bool canCreateDirectories = true;
  QString prompt;            // the text of the confirming button
  QString nameFieldLabel;    // the label before the name field
  QString requiredFileType;  // without the dot; empty: the name is used as typed

  // The path with the required file type appended where it is missing.
  QString withRequiredFileType(const QString& path) const {
    if (requiredFileType.isEmpty() || path.isEmpty())
      return path;
    const QString suffix = QLatin1Char('.') + requiredFileType;
    return path.endsWith(suffix) ? path : path + suffix;
  }
};

// What an open panel offers.
struct OpenPanel {
  QString title;
  QString prompt;
  bool filesOnly = true;
  bool multipleSelection = false;
};

// The desktop's modal alerts and file panels. Every feature reports to the user through
// this port, so a test can answer the panels and read back every alert shown.
class Dialogs {
 public:
  virtual ~Dialogs() = default;

  // Shows the alert modally and returns the index of the button pressed (0 is the default).
  virtual int showAlert(const Alert& alert) = 0;
  // Returns the chosen path, or an empty string when the user cancelled.
  virtual QString runSavePanel(const SavePanel& panel) = 0;
  // Returns the chosen paths, or an empty list when the user cancelled.
  virtual QStringList runOpenPanel(const OpenPanel& panel) = 0;
  // Lets the user set up the printer (which printer, or a PDF file, pages, copies); false when
  // the user cancelled, and always where there is no print panel (a console).
  virtual bool runPrintPanel(QPrinter& /*printer*/) { return false; }

  // A critical alert with a single "OK", the form of every alert that ends an action.
  void critical(const QString& title, const QString& message) {
    showAlert({AlertStyle::Critical, title, message, {}});
  }
  // An informational alert with a single "OK".
  void inform(const QString& title, const QString& message) {
    showAlert({AlertStyle::Informational, title, message, {}});
  }
};

}  // namespace quillery::platform
