#pragma once

#include "platform/Pasteboard.h"

namespace quillery::platform {

// The general clipboard through QGuiApplication::clipboard().
class QtPasteboard : public Pasteboard {
 public:
  void setText(const QString& text) override;
  QString text() const override;
};

}  // namespace quillery::platform
