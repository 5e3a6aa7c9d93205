#include "platform/qt/QtPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>

namespace quillery::platform {

void QtPasteboard::setText(const QString& text) {
  QGuiApplication::clipboard()->setText(text);
}

QString QtPasteboard::text() const {
  return QGuiApplication::clipboard()->text();
}

}  // namespace quillery::platform
