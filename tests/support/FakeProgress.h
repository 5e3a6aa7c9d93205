#pragma once

#include <QStringList>
#include <functional>

#include "platform/Progress.h"

namespace quillery::test {

// Records what the progress panel was told, in order, as "open:T", "title:T", "count:N",
// "item:X", "controls:1/0", "close". onEvent, when set, is called with each event as it is
// recorded, so a test can act at a given point as a user (cancel) or a fault would.
class FakeProgress : public platform::Progress {
 public:
  void open(const QString& title) override {
    isOpen = true;
    record(QStringLiteral("open:") + title);
  }
  void setTitle(const QString& title) override { record(QStringLiteral("title:") + title); }
  void showCount(const QString& text) override {
    count = text;
    record(QStringLiteral("count:") + text);
  }
  void showItem(const QString& text) override {
    item = text;
    record(QStringLiteral("item:") + text);
  }
  // "controls:1"/"controls:0" for all of them, "count:..." and "count+item:..." for fewer.
  void setRunControlsVisible(bool visible, RunControls which) override {
    const char* prefix = which == RunControls::All     ? "controls:"
                         : which == RunControls::Count ? "controls:count:"
                                                       : "controls:count+item:";
    record(QLatin1String(prefix) + (visible ? QLatin1Char('1') : QLatin1Char('0')));
  }
  void close() override {
    isOpen = false;
    record(QStringLiteral("close"));
  }

  QStringList events;
  QString count;
  QString item;
  bool isOpen = false;
  std::function<void(const QString& event)> onEvent;

 private:
  void record(const QString& event) {
    events.append(event);
    if (onEvent)
      onEvent(event);
  }
};

}  // namespace quillery::test
