#pragma once

#include <QDialog>
#include <QList>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

namespace quillery::search {
struct SearchForm;
}

namespace quillery::app {

class DatePopUp;

// The search panel: a date range, words for five message fields and part of an attachment's
// name, the tag fields, and the connectors ("AND"/"OR") placed between the fields. It opens
// neutral, as the two reset actions leave it.
class SearchPanel : public QDialog {
  Q_OBJECT

 public:
  explicit SearchPanel(QWidget* parent = nullptr);

  // What the panel holds, as the search takes it.
  search::SearchForm form() const;
  // Shows the form's values; a title the pop-up lacks leaves that pop-up as it was.
  void setForm(const search::SearchForm& form);

  DatePopUp* beginMo;
  DatePopUp* beginDa;
  DatePopUp* beginYr;
  DatePopUp* endMo;
  DatePopUp* endDa;
  DatePopUp* endYr;
  // Cells 0 from, 1 to, 2 subject, 3 mailbox, 4 message text, 5 attachment file name.
  QList<QLineEdit*> keyWords;
  QComboBox* fromAndButton;
  QComboBox* toAndButton;
  QComboBox* subjAndButton;
  QComboBox* mailboxAndButton;
  QComboBox* searchCatButton;
  // Cells 0 keywords, 1 notes.
  QList<QLineEdit*> tagWords;
  QComboBox* catAndButton;
  QComboBox* keywordsAndButton;
  QComboBox* priorityAndButton;
  QCheckBox* priorityCheck;
  QComboBox* searchPriorityButton;
  QCheckBox* onlyAttachCheck;
  QPushButton* resetButton;
  QPushButton* resetTagsButton;
  QPushButton* sqlButton;
  QPushButton* browseButton;
  QPushButton* searchButton;
};

}  // namespace quillery::app
