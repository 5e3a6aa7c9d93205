#pragma once

#include <QDialog>
#include <QList>
#include <QStringList>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QStringListModel;
class QTableView;

namespace quillery::app {

// The preferences (setup) panel: the archive path, the choice between whole accounts and
// single mailboxes with the table of names to choose from, and the five store switches. It
// only shows and reports; the preferences decide what the values mean.
class SetupPanel : public QDialog {
  Q_OBJECT

 public:
  explicit SetupPanel(QWidget* parent = nullptr);

  // Shows these names, one row each (a trailing line end is not shown), and selects exactly
  // the given rows.
  void showSources(const QStringList& sourceList, const QList<int>& selectedRows);
  // The selected rows, ascending.
  QList<int> selectedRows() const;
  void selectAllRows();
  // 0 for "Select Accounts", 1 for "Select Mailboxes": the entry the pop-up shows as chosen.
  void markMode(int mailboxesState);

  QLabel* setupTitleTextField;
  QComboBox* selectMboxButton;
  QTableView* selectAcctsTableView;
  QLineEdit* dbPath;
  QPushButton* newDbButton;
  QPushButton* openDbButton;
  QCheckBox* allmbCheck;
  QCheckBox* attachCheck;
  QCheckBox* htmlCheck;
  QCheckBox* trashCheck;
  QCheckBox* origCheck;
  QPushButton* storeButton;
  QPushButton* cancelButton;
  QPushButton* saveButton;

 private:
  QStringListModel* sourceModel_;
};

}  // namespace quillery::app
