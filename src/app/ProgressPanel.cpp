#include "app/ProgressPanel.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "app/BusyIndicator.h"

namespace quillery::app {

namespace {
constexpr int kMinRepaintMs = 30;
}

ProgressPanel::ProgressPanel(QWidget* parent)
    : QDialog(parent),
      indicator(new BusyIndicator(this)),
      titleTextField(new QLabel(this)),
      progressTextField(new QLabel(this)),
      parseFileTextField(new QLabel(this)),
      parseCancelButton(new QPushButton(tr("Cancel"), this)) {
  setObjectName(QStringLiteral("ProgressPanel"));
  setModal(false);
  QFont bold = titleTextField->font();
  bold.setBold(true);
  titleTextField->setFont(bold);
  parseFileTextField->setWordWrap(true);
  parseFileTextField->setTextInteractionFlags(Qt::TextSelectableByMouse);
  parseFileTextField->setMinimumHeight(fontMetrics().lineSpacing() * 2);
  progressTextField->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("0000000")));

  auto* countRow = new QHBoxLayout;
  countRow->addWidget(indicator, 1);
  countRow->addWidget(progressTextField);
  auto* buttonRow = new QHBoxLayout;
  buttonRow->addStretch(1);
  buttonRow->addWidget(parseCancelButton);
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(titleTextField);
  layout->addLayout(countRow);
  layout->addWidget(parseFileTextField);
  layout->addLayout(buttonRow);
  setMinimumWidth(420);

  parseFileTextField->hide();
  parseCancelButton->hide();
  connect(parseCancelButton, &QPushButton::clicked, this, &ProgressPanel::cancelRequested);
}

void ProgressPanel::open(const QString& title) {
  setTitle(title);
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
  progressTextField->setText(text);
  repaintNow();
}

void ProgressPanel::showItem(const QString& text) {
  parseFileTextField->setText(text);
  repaintNow();
}

void ProgressPanel::setRunControlsVisible(bool visible, RunControls which) {
  progressTextField->setVisible(visible);
  if (which != RunControls::Count)
    parseFileTextField->setVisible(visible);
  if (which == RunControls::All)
    parseCancelButton->setVisible(visible);
}

void ProgressPanel::close() {
  hide();
}

void ProgressPanel::hideEvent(QHideEvent* event) {
  indicator->stop();
  QDialog::hideEvent(event);
}

void ProgressPanel::repaintNow() {
  if (!isVisible())
    return;
  if (lastRepaint_.isValid() && lastRepaint_.elapsed() < kMinRepaintMs) {
    update();
    return;
  }
  repaint();
  lastRepaint_.start();
}

}  // namespace quillery::app
