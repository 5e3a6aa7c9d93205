#pragma once

#include "platform/Files.h"

namespace quillery::platform {

// Files through QFile, extended attributes through setxattr(2).
class QtFiles : public Files {
 public:
  bool exists(const QString& path) const override;
  bool remove(const QString& path) override;
  bool copy(const QString& from, const QString& to) override;
  bool move(const QString& from, const QString& to) override;
  bool setExtendedAttribute(const QString& path, const QString& name,
                            const QByteArray& value) override;
};

}  // namespace quillery::platform
