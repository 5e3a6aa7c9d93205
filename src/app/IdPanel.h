#pragma once

#include <QDialog>

class QLineEdit;
class QPushButton;

namespace quillery::app {

// Asks for the database name that an SQL script export writes into its statements.
class IdPanel : public QDialog {
  Q_OBJECT

 public:
  explicit IdPanel(QWidget* parent = nullptr);

  QLineEdit* idTextField;
  QPushButton* cancelButton;
  QPushButton* okButton;
};

}  // namespace quillery::app
