#pragma once

#include <QObject>

namespace quillery::ingest {
class StorePreparation;
class StoreRun;
}  // namespace quillery::ingest
namespace quillery::search {
class EmailTableModel;
class ResultList;
}  // namespace quillery::search

namespace quillery::app {

class MainWindow;
class SqlPanel;
class StoreDatePanel;

// Keeps the store and list panel, the store-date panel and the main window in step with the
// result list and the store run: the table shows the list through its model with the seven
// columns, a header click sorts the list (never the table by itself) and the header shows the
// list's indicator; counts, titles and the date panel follow the signals.
class StorePanelBinding : public QObject {
  Q_OBJECT

 public:
  StorePanelBinding(MainWindow& window, StoreDatePanel& datePanel, SqlPanel& sqlPanel,
                    search::ResultList& list, ingest::StorePreparation& preparation,
                    ingest::StoreRun& run, QObject* parent = nullptr);

  search::EmailTableModel& model() const { return *model_; }

 Q_SIGNALS:
  // The list asks for its font and row height again after rows were removed.
  void listFontWanted();

 private:
  void bindResultList();
  void bindStoreRun();

  MainWindow& window_;
  StoreDatePanel& datePanel_;
  SqlPanel& sqlPanel_;
  search::ResultList& list_;
  ingest::StorePreparation& preparation_;
  ingest::StoreRun& run_;
  search::EmailTableModel* model_;
};

}  // namespace quillery::app
