#pragma once

#include <QDialog>

class QPlainTextEdit;
class QPushButton;

namespace quillery::app {

// The SQL query panel: the fixed head of the search statement, shown only, and the condition
// that the user may edit and run in its place.
class SqlPanel : public QDialog {
  Q_OBJECT

 public:
  explicit SqlPanel(QWidget* parent = nullptr);

  QPlainTextEdit* beginSqlTextField;
  QPlainTextEdit* whereTextField;
  QPushButton* schemaButton;
  QPushButton* runButton;
};

}  // namespace quillery::app
