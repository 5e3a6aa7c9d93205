#pragma once

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace quillery::app {

// The tag panel: category (typed, or chosen from the known ones), keywords, priority and notes
// of the selected messages. The priority pop-up's positions are the stored priority numbers.
class TagPanel : public QDialog {
  Q_OBJECT

 public:
  explicit TagPanel(QWidget* parent = nullptr);

  QLineEdit* catTextField;
  QComboBox* setCatButton;
  QLineEdit* keywordsTextField;
  QComboBox* priorityButton;
  QLineEdit* notesTextField;
  QPushButton* setTagsButton;
};

}  // namespace quillery::app
