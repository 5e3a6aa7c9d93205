#pragma once

#include <QTableView>

namespace quillery::app {

// The result table: a table view that says when its selection changes, whatever model and
// selection model it is given later.
class ResultTableView : public QTableView {
  Q_OBJECT

 public:
  using QTableView::QTableView;

 Q_SIGNALS:
  void selectedRowsChanged();

 protected:
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
};

}  // namespace quillery::app
