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
  // "controls:1"/"controls:0" for all of them, "count:..." and "count+item:..." for fewer.
  void setRunControlsVisible(bool visible, RunControls which) override {
    const char* prefix = which == RunControls::All     ? "controls:"
                         : which == RunControls::Count ? "controls:count:"
                                                       : "controls:count+item:";
    events.append(QLatin1String(prefix) + (visible ? QLatin1Char('1') : QLatin1Char('0')));
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
