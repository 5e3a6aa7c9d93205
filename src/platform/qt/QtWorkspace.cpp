#include "platform/qt/QtWorkspace.h"

#include <QDesktopServices>

namespace quillery::platform {

bool QtWorkspace::openFile(const QString& path) {
  return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool QtWorkspace::openUrl(const QUrl& url) {
  return QDesktopServices::openUrl(url);
}

}  // namespace quillery::platform
