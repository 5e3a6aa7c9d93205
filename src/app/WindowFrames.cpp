#include "app/WindowFrames.h"

#include <QEvent>
#include <QHeaderView>
#include <QSplitter>
#include <QWidget>

#include "platform/Settings.h"

namespace quillery::app {

namespace {

QString frameKey(const QString& name) {
  return QStringLiteral("windowFrames/") + name;
}
QString columnsKey(const QString& name) {
  return QStringLiteral("tableColumns/") + name;
}
QString splitterKey(const QString& name) {
  return QStringLiteral("splitters/") + name;
}

}  // namespace

WindowFrames::WindowFrames(platform::Settings& settings, QObject* parent)
    : QObject(parent), settings_(settings) {}

void WindowFrames::setFrameAutosaveName(QWidget* window, const QString& name) {
  const QByteArray stored = settings_.value(frameKey(name)).toByteArray();
  const bool restored = !stored.isEmpty() && window->restoreGeometry(stored);
  frames_.append({window, name, restored});
  window->installEventFilter(this);
}

void WindowFrames::setColumnAutosaveName(QHeaderView* header, const QString& name) {
  const QByteArray stored = settings_.value(columnsKey(name)).toByteArray();
  if (!stored.isEmpty() && header->restoreState(stored)) {
    // The sort indicator belongs to the list of this run, which is not sorted yet.
    header->setSortIndicator(-1, Qt::AscendingOrder);
  }
  headers_.append({header, name});
}

void WindowFrames::setSplitterAutosaveName(QSplitter* splitter, const QString& name) {
  const QByteArray stored = settings_.value(splitterKey(name)).toByteArray();
  if (!stored.isEmpty())
    splitter->restoreState(stored);
  splitters_.append({splitter, name});
}

bool WindowFrames::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Show || event->type() == QEvent::Hide) {
    for (Frame& frame : frames_) {
      if (frame.window != watched)
        continue;
      frame.known = true;
      if (event->type() == QEvent::Hide)
        saveFrame(frame);
    }
  }
  return QObject::eventFilter(watched, event);
}

void WindowFrames::saveFrame(const Frame& frame) {
  if (frame.window && frame.known)
    settings_.setValue(frameKey(frame.name), frame.window->saveGeometry());
}

void WindowFrames::saveAll() {
  for (const Frame& frame : frames_)
    saveFrame(frame);
  for (const auto& [header, name] : headers_) {
    if (header)
      settings_.setValue(columnsKey(name), header->saveState());
  }
  for (const auto& [splitter, name] : splitters_) {
    if (splitter)
      settings_.setValue(splitterKey(name), splitter->saveState());
  }
  settings_.sync();
}

}  // namespace quillery::app
