#include "app/StorePanel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTableView>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

namespace quillery::app {

StorePanel::StorePanel(QWidget* parent)
    : QWidget(parent),
      storeTableView(new QTableView(this)),
      bodyTextView(new QTextBrowser(this)),
      viewOrigButton(new QPushButton(tr("View Source"), this)),
      dbCountTextField(new QLabel(this)),
      listCountTextField(new QLabel(this)),
      splitter(new QSplitter(Qt::Vertical, this)),
      progressTextField(new QLabel(this)),
      parseFileTextField(new QLabel(this)),
      parseCancelButton(new QPushButton(tr("Cancel"), this)) {
  setObjectName(QStringLiteral("storePanel"));

  storeTableView->setShowGrid(true);
  storeTableView->setSortingEnabled(false);
  storeTableView->setSelectionBehavior(QAbstractItemView::SelectRows);
  storeTableView->setSelectionMode(QAbstractItemView::ExtendedSelection);
  storeTableView->setEditTriggers(QAbstractItemView::NoEditTriggers);
  storeTableView->setWordWrap(false);
  storeTableView->setAlternatingRowColors(true);
  storeTableView->verticalHeader()->hide();
  storeTableView->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  QHeaderView* header = storeTableView->horizontalHeader();
  header->setSectionsClickable(true);
  header->setSectionsMovable(true);
  header->setSortIndicatorShown(true);
  header->setSortIndicator(-1, Qt::AscendingOrder);
  header->setStretchLastSection(true);
  header->setHighlightSections(false);
  // The header keeps the desktop's font when the list font is applied to the table.
  header->setFont(QApplication::font());
  connect(header, &QHeaderView::sectionClicked, this, &StorePanel::columnClicked);

  bodyTextView->setOpenLinks(false);
  bodyTextView->setPlaceholderText(tr("Select a message to read it here."));
  viewOrigButton->setEnabled(false);

  splitter->addWidget(storeTableView);
  splitter->addWidget(bodyTextView);
  splitter->setStretchFactor(0, 3);
  splitter->setStretchFactor(1, 2);
  splitter->setChildrenCollapsible(false);

  parseFileTextField->setTextInteractionFlags(Qt::TextSelectableByMouse);
  parseFileTextField->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  progressTextField->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("0000000")));
  progressTextField->hide();
  parseFileTextField->hide();
  parseCancelButton->hide();
  connect(parseCancelButton, &QPushButton::clicked, this, &StorePanel::cancelRequested);
  auto* run = new QHBoxLayout;
  run->addWidget(progressTextField);
  run->addWidget(parseFileTextField, 1);
  run->addWidget(parseCancelButton);

  auto* counts = new QHBoxLayout;
  counts->addWidget(listCountTextField);
  counts->addStretch(1);
  counts->addWidget(dbCountTextField);
  counts->addSpacing(12);
  counts->addWidget(viewOrigButton);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(6, 6, 6, 6);
  layout->addWidget(splitter, 1);
  layout->addLayout(run);
  layout->addLayout(counts);
}

void StorePanel::applyListFont(const QFont& font) {
  const int rowHeight = static_cast<int>(std::ceil(QFontMetricsF(font).lineSpacing())) + 2;
  QHeaderView* rows = storeTableView->verticalHeader();
  rows->setMinimumSectionSize(std::min(rows->minimumSectionSize(), rowHeight));
  rows->setDefaultSectionSize(rowHeight);
  storeTableView->setFont(font);
  storeTableView->viewport()->update();
}

QList<int> StorePanel::selectedDisplayRows() const {
  QList<int> rows;
  if (storeTableView->selectionModel() == nullptr)
    return rows;
  const QModelIndexList selected = storeTableView->selectionModel()->selectedRows();
  for (const QModelIndex& index : selected)
    rows.append(index.row());
  std::sort(rows.begin(), rows.end());
  return rows;
}

}  // namespace quillery::app
