#pragma once

#include <QDialog>

class QComboBox;
class QLineEdit;
class QPushButton;

namespace quillery::search {
struct TagValues;
}

namespace quillery::app {

// The tag panel: category (typed, or chosen from the known ones), keywords, priority and notes
// of the selected messages. The priority pop-up's positions are the stored priority numbers.
class TagPanel : public QDialog {
  Q_OBJECT

 public:
  explicit TagPanel(QWidget* parent = nullptr);

  // The values the panel saves, and the values of a message shown in it.
  search::TagValues values() const;
  void setValues(const search::TagValues& values);
  // A category chosen in setCatButton goes into the category field; "None" empties it.
  void chooseSetCat();

  QLineEdit* catTextField;
  QComboBox* setCatButton;
  QLineEdit* keywordsTextField;
  QComboBox* priorityButton;
  QLineEdit* notesTextField;
  QPushButton* setTagsButton;
};

}  // namespace quillery::app
