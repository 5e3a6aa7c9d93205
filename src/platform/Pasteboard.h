#pragma once

#include <QString>

namespace quillery::platform {

// The desktop's general clipboard.
class Pasteboard {
 public:
  virtual ~Pasteboard() = default;

  virtual void setText(const QString& text) = 0;
  virtual QString text() const = 0;
};

}  // namespace quillery::platform
