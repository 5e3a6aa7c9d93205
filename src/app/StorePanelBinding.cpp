#include "app/StorePanelBinding.h"

#include <QHeaderView>
#include <QLabel>
#include <QTableView>
#include <QTextBrowser>

#include "app/MainWindow.h"
#include "app/SqlPanel.h"
#include "app/StoreDatePanel.h"
#include "app/StorePanel.h"
#include "ingest/StorePreparation.h"
#include "ingest/StoreRun.h"
#include "search/EmailTableModel.h"
#include "search/ResultList.h"

namespace quillery::app {

StorePanelBinding::StorePanelBinding(MainWindow& window, StoreDatePanel& datePanel,
                                     SqlPanel& sqlPanel, search::ResultList& list,
                                     ingest::StorePreparation& preparation, ingest::StoreRun& run,
                                     QObject* parent)
    : QObject(parent),
      window_(window),
      datePanel_(datePanel),
      sqlPanel_(sqlPanel),
      list_(list),
      preparation_(preparation),
      run_(run),
      model_(new search::EmailTableModel(list, search::ResultList::kColumnIdentifiers, &window)) {
  QTableView* table = window_.storePanel()->storeTableView;
  table->setModel(model_);
  // Widths that fit the usual contents; the user's own come back with the saved layout.
  const QList<int> widths{50, 85, 145, 175, 175, 260, 140};
  for (int column = 0; column < widths.size() && column < model_->columnCount(); ++column)
    table->horizontalHeader()->resizeSection(column, widths[column]);
  bindResultList();
  bindStoreRun();
}

void StorePanelBinding::bindResultList() {
  StorePanel* panel = window_.storePanel();
  connect(panel, &StorePanel::columnClicked, this, [this](int section) {
    const QStringList& ids = model_->columnIdentifiers();
    if (section >= 0 && section < ids.size())
      list_.clickColumn(ids.at(section));
  });
  connect(&list_, &search::ResultList::sortIndicatorChanged, this,
          [this, panel](const QString& identifier, bool descending) {
            panel->storeTableView->horizontalHeader()->setSortIndicator(
                model_->columnOf(identifier),
                descending ? Qt::DescendingOrder : Qt::AscendingOrder);
          });
  connect(&list_, &search::ResultList::countsChanged, this,
          [panel](const QString& dbCount, const QString& listCount) {
            panel->dbCountTextField->setText(dbCount);
            panel->listCountTextField->setText(listCount);
            // Shown at once: the retrieval goes on working before the event loop runs.
            panel->dbCountTextField->repaint();
          });
  connect(&list_, &search::ResultList::listWindowTitleChanged, panel, &QWidget::setWindowTitle);
  // The panel is part of the main window and can't close: it drops its title instead, so that
  // a failed retrieval does not stay "retrieving email from database...".
  connect(&list_, &search::ResultList::listWindowClosed, panel,
          [panel] { panel->setWindowTitle(QString()); });
  connect(&list_, &search::ResultList::listWindowShown, this, [this] {
    window_.show();
    window_.raise();
  });
  connect(&list_, &search::ResultList::sqlPanelClosed, &sqlPanel_, &QWidget::close);
  connect(&list_, &search::ResultList::messageViewCleared, panel->bodyTextView,
          &QTextBrowser::clear);
  connect(&list_, &search::ResultList::fontReapplied, this, &StorePanelBinding::listFontWanted);
}

void StorePanelBinding::bindStoreRun() {
  StorePanel* panel = window_.storePanel();
  connect(&preparation_, &ingest::StorePreparation::storeDatePanelShown, this, [this] {
    datePanel_.show();
    datePanel_.raise();
    datePanel_.activateWindow();
  });
  connect(&preparation_, &ingest::StorePreparation::storeDatePanelClosed, &datePanel_,
          &QWidget::hide);
  connect(&preparation_, &ingest::StorePreparation::beginStoreDateSelected, &datePanel_,
          &StoreDatePanel::setBegin);
  connect(&run_, &ingest::StoreRun::messageViewCleared, panel->bodyTextView, &QTextBrowser::clear);
  connect(&run_, &ingest::StoreRun::storePanelTitleChanged, panel, &QWidget::setWindowTitle);
  connect(&run_, &ingest::StoreRun::storePanelClosed, panel,
          [panel] { panel->setWindowTitle(QString()); });
}

}  // namespace quillery::app
