#include "app/ProgressPanel.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/BusyIndicator.h"
#include "app/StorePanel.h"

namespace quillery::app {

namespace {
constexpr int kMinRepaintMs = 30;
}

ProgressPanel::ProgressPanel(StorePanel& runControls, QWidget* parent)
    : QDialog(parent),
      indicator(new BusyIndicator(this)),
      titleTextField(new QLabel(this)),
      countTextField(new QLabel(this)),
      stopButton(new QPushButton(QStringLiteral("Stop"), this)),
      runControls_(runControls) {
  setObjectName(QStringLiteral("ProgressPanel"));
  setModal(false);
  QFont bold = titleTextField->font();
  bold.setBold(true);
  titleTextField->setFont(bold);
  countTextField->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("0000000")));

  auto* countRow = new QHBoxLayout;
  countRow->addWidget(indicator, 1);
  countRow->addWidget(countTextField);
  countRow->addWidget(stopButton);
  stopButton->hide();
  connect(stopButton, &QPushButton::clicked, this, [this] {
    if (stop_)
      stop_();
  });
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(titleTextField);
  layout->addLayout(countRow);
  setMinimumWidth(420);
}

void ProgressPanel::open(const QString& title) {
  setTitle(title);
  // Modality is set while the panel is hidden.
  const bool modal = bool(stop_);
  if (isVisible() && modal != (windowModality() == Qt::ApplicationModal))
    hide();
  setWindowModality(modal ? Qt::ApplicationModal : Qt::NonModal);
  stopButton->setVisible(modal);
  show();
  raise();
  activateWindow();
  indicator->start();
  lastRepaint_.invalidate();
  repaintNow();
}

void ProgressPanel::setTitle(const QString& title) {
  setWindowTitle(title);
  titleTextField->setText(title);
  repaintNow();
}

void ProgressPanel::showCount(const QString& text) {
  countTextField->setText(text);
  runControls_.progressTextField->setText(text);
  repaintNow();
}

void ProgressPanel::showItem(const QString& text) {
  runControls_.parseFileTextField->setText(text);
  repaintNow();
}

void ProgressPanel::setRunControlsVisible(bool visible, RunControls which) {
  runControls_.progressTextField->setVisible(visible);
  if (which != RunControls::Count)
    runControls_.parseFileTextField->setVisible(visible);
  if (which == RunControls::All)
    runControls_.parseCancelButton->setVisible(visible);
}

void ProgressPanel::close() {
  hide();
  offerStop({});
}

void ProgressPanel::offerStop(std::function<void()> stop) {
  stop_ = std::move(stop);
  if (!stop_) {
    stopButton->hide();
    if (!isVisible())
      setWindowModality(Qt::NonModal);
  }
}

void ProgressPanel::keepResponsive() {
  // The store run's pipes are left for later: their handlers must not run inside other work.
  const QEventLoop::ProcessEventsFlags kept =
      QEventLoop::ExcludeSocketNotifiers |
      (stop_ && isVisible() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
  QCoreApplication::processEvents(kept);
}

void ProgressPanel::hideEvent(QHideEvent* event) {
  indicator->stop();
  QDialog::hideEvent(event);
}

void ProgressPanel::repaintNow() {
  const bool soon = lastRepaint_.isValid() && lastRepaint_.elapsed() < kMinRepaintMs;
  const QList<QWidget*> shown{this, runControls_.progressTextField,
                              runControls_.parseFileTextField};
  for (QWidget* widget : shown) {
    if (!widget->isVisible())
      continue;
    if (soon)
      widget->update();
    else
      widget->repaint();
  }
  if (!soon)
    lastRepaint_.start();
}

}  // namespace quillery::app
