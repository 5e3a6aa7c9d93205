#include "app/SetupPanel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStringListModel>
#include <QTableView>
#include <QVBoxLayout>
#include <algorithm>

namespace quillery::app {

SetupPanel::SetupPanel(QWidget* parent)
    : QDialog(parent),
      setupTitleTextField(new QLabel(this)),
      selectMboxButton(new QComboBox(this)),
      selectAcctsTableView(new QTableView(this)),
      dbPath(new QLineEdit(this)),
      newDbButton(new QPushButton(tr("New…"), this)),
      openDbButton(new QPushButton(tr("Choose…"), this)),
      allmbCheck(new QCheckBox(tr("Store all mailboxes of the chosen accounts"), this)),
      attachCheck(new QCheckBox(tr("Store attachments"), this)),
      htmlCheck(new QCheckBox(tr("Store HTML parts"), this)),
      trashCheck(new QCheckBox(tr("Also store the Trash and Junk mailboxes"), this)),
      origCheck(new QCheckBox(tr("Keep each message's original source"), this)),
      storeButton(new QPushButton(tr("Store Email…"), this)),
      cancelButton(new QPushButton(tr("Cancel"), this)),
      saveButton(new QPushButton(tr("Save"), this)),
      sourceModel_(new QStringListModel(this)) {
  setObjectName(QStringLiteral("prefPanel"));
  setWindowTitle(tr("Quillery Setup"));

  selectMboxButton->addItems(
      {QStringLiteral("Select Accounts"), QStringLiteral("Select Mailboxes")});
  selectAcctsTableView->setModel(sourceModel_);
  selectAcctsTableView->setSelectionBehavior(QAbstractItemView::SelectRows);
  selectAcctsTableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
  selectAcctsTableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
  selectAcctsTableView->horizontalHeader()->hide();
  selectAcctsTableView->horizontalHeader()->setStretchLastSection(true);
  selectAcctsTableView->verticalHeader()->hide();
  selectAcctsTableView->setShowGrid(false);
  selectAcctsTableView->setAlternatingRowColors(true);
  selectAcctsTableView->setMinimumHeight(180);
  dbPath->setMinimumWidth(320);
  saveButton->setDefault(true);

  auto* archiveBox = new QGroupBox(tr("Archive file"), this);
  auto* archiveRow = new QHBoxLayout(archiveBox);
  archiveRow->addWidget(dbPath, 1);
  archiveRow->addWidget(newDbButton);
  archiveRow->addWidget(openDbButton);

  auto* sourceBox = new QGroupBox(tr("Mail to store"), this);
  auto* sourceLayout = new QGridLayout(sourceBox);
  sourceLayout->addWidget(setupTitleTextField, 0, 0);
  sourceLayout->addWidget(selectMboxButton, 0, 1, Qt::AlignRight);
  sourceLayout->addWidget(selectAcctsTableView, 1, 0, 1, 2);

  auto* optionsBox = new QGroupBox(tr("Options"), this);
  auto* options = new QVBoxLayout(optionsBox);
  for (QCheckBox* check : {allmbCheck, trashCheck, attachCheck, htmlCheck, origCheck})
    options->addWidget(check);

  auto* buttons = new QHBoxLayout;
  buttons->addWidget(storeButton);
  buttons->addStretch(1);
  buttons->addWidget(cancelButton);
  buttons->addWidget(saveButton);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(archiveBox);
  layout->addWidget(sourceBox, 1);
  layout->addWidget(optionsBox);
  layout->addLayout(buttons);
}

void SetupPanel::showSources(const QStringList& sourceList, const QList<int>& selectedRows) {
  QStringList shown;
  shown.reserve(sourceList.size());
  for (const QString& entry : sourceList)
    shown.append(entry.endsWith(QLatin1Char('\n')) ? entry.chopped(1) : entry);
  sourceModel_->setStringList(shown);
  QItemSelection selection;
  for (int row : selectedRows) {
    const QModelIndex index = sourceModel_->index(row);
    if (index.isValid())
      selection.select(index, index);
  }
  selectAcctsTableView->selectionModel()->select(
      selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QList<int> SetupPanel::selectedRows() const {
  QList<int> rows;
  const QModelIndexList selected = selectAcctsTableView->selectionModel()->selectedRows();
  for (const QModelIndex& index : selected)
    rows.append(index.row());
  std::sort(rows.begin(), rows.end());
  return rows;
}

void SetupPanel::selectAllRows() {
  selectAcctsTableView->selectAll();
}

void SetupPanel::markMode(int mailboxesState) {
  selectMboxButton->setCurrentIndex(mailboxesState != 0 ? 1 : 0);
}

}  // namespace quillery::app
