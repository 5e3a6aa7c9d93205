#pragma once

#include <QString>
#include <QUrl>

namespace quillery::platform {

// Hands files and URLs to the desktop's applications.
class Workspace {
 public:
  virtual ~Workspace() = default;

  // Opens a file with the application the desktop associates with it.
  virtual bool openFile(const QString& path) = 0;
  // Opens a URL ("mailto:..."), returning false when nothing could take it.
  virtual bool openUrl(const QUrl& url) = 0;
};

}  // namespace quillery::platform
