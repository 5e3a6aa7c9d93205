#include "app/ResultTableView.h"

namespace quillery::app {

void ResultTableView::selectionChanged(const QItemSelection& selected,
                                       const QItemSelection& deselected) {
  QTableView::selectionChanged(selected, deselected);
  Q_EMIT selectedRowsChanged();
}

}  // namespace quillery::app
