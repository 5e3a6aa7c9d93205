#pragma once

#include <QStringList>

#include "platform/Progress.h"

namespace quillery::test {

// Records what the progress panel was told, in order, as "open:T", "title:T", "count:N",
// "item:X", "controls:1/0", "close".
class FakeProgress : public platform::Progress {
 public:
  void open(const QString& title) override {
    events.append(QStringLiteral("open:") + title);
    isOpen = true;
  }
  void setTitle(const QString& title) override { events.append(QStringLiteral("title:") + title); }
  void showCount(const QString& text) override {
    events.append(QStringLiteral("count:") + text);
    count = text;
  }
  void showItem(const QString& text) override {
    events.append(QStringLiteral("item:") + text);
    item = text;
  }
  void setRunControlsVisible(bool visible) override {
    events.append(visible ? QStringLiteral("controls:1") : QStringLiteral("controls:0"));
  }
  void close() override {
    events.append(QStringLiteral("close"));
    isOpen = false;
  }

  QStringList events;
  QString count;
  QString item;
  bool isOpen = false;
};

}  // namespace quillery::test
