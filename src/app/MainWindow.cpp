#include "app/MainWindow.h"

#include <QCloseEvent>
#include <QToolBar>

#include "app/StorePanel.h"

namespace quillery::app {

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), storePanel_(new StorePanel(this)) {
  setObjectName(QStringLiteral("msWindow"));
  setCentralWidget(storePanel_);
  followPanelTitle(QString());
  connect(storePanel_, &QWidget::windowTitleChanged, this, &MainWindow::followPanelTitle);
  resize(1100, 720);
}

void MainWindow::setToolBarActions(const QList<QAction*>& actions) {
  QToolBar* bar = addToolBar(tr("Commands"));
  bar->setObjectName(QStringLiteral("commandBar"));
  bar->setMovable(false);
  bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
  for (QAction* action : actions) {
    if (action == nullptr)
      bar->addSeparator();
    else
      bar->addAction(action);
  }
}

void MainWindow::followPanelTitle(const QString& title) {
  setWindowTitle(title.isEmpty() ? QStringLiteral("Quillery")
                                 : title + QStringLiteral(" — Quillery"));
}

void MainWindow::closeEvent(QCloseEvent* event) {
  QMainWindow::closeEvent(event);
  if (event->isAccepted())
    Q_EMIT closed();
}

}  // namespace quillery::app
