#include "app/BusyIndicator.h"

#include <QPainter>
#include <cmath>

namespace quillery::app {

namespace {
constexpr int kFrameMs = 40;
constexpr double kPeriodMs = 1600.0;  // one sweep there and back
}  // namespace

BusyIndicator::BusyIndicator(QWidget* parent) : QWidget(parent) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  timer_.setInterval(kFrameMs);
  connect(&timer_, &QTimer::timeout, this, qOverload<>(&QWidget::update));
}

void BusyIndicator::start() {
  clock_.start();
  timer_.start();
  update();
}

void BusyIndicator::stop() {
  timer_.stop();
  update();
}

void BusyIndicator::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF track = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
  const double radius = track.height() / 2.0;
  painter.setPen(palette().color(QPalette::Mid));
  painter.setBrush(palette().color(QPalette::Base));
  painter.drawRoundedRect(track, radius, radius);
  if (!isAnimating())
    return;

  const double blockWidth = track.width() / 4.0;
  const double phase = std::fmod(static_cast<double>(clock_.elapsed()), kPeriodMs) / kPeriodMs;
  const double travel = phase < 0.5 ? phase * 2.0 : (1.0 - phase) * 2.0;
  const QRectF block(track.left() + travel * (track.width() - blockWidth), track.top(), blockWidth,
                     track.height());
  painter.setPen(Qt::NoPen);
  painter.setBrush(palette().color(QPalette::Highlight));
  painter.drawRoundedRect(block, radius, radius);
}

}  // namespace quillery::app
