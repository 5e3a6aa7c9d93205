#pragma once

#include "platform/Workspace.h"

namespace quillery::platform {

// Files and URLs through QDesktopServices.
class QtWorkspace : public Workspace {
 public:
  bool openFile(const QString& path) override;
  bool openUrl(const QUrl& url) override;
};

}  // namespace quillery::platform
