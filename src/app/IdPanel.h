#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace quillery::app {

// Asks for the number from which an SQL script export numbers the messages it writes, so
// that the script can add to a database that already holds messages. Runs modally; the
// controller's gotID and cancelID end it.
class IdPanel : public QDialog {
  Q_OBJECT

 public:
  explicit IdPanel(QWidget* parent = nullptr);

  QLineEdit* idTextField;
  QPushButton* cancelButton;
  QPushButton* okButton;
};

}  // namespace quillery::app
