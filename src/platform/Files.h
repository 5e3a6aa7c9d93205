#pragma once

#include <QByteArray>
#include <QString>

namespace quillery::platform {

// File operations that the archive needs beyond plain reading and writing. Each returns
// false on failure and never throws; callers that may ignore a failure do so knowingly.
class Files {
 public:
  virtual ~Files() = default;

  virtual bool exists(const QString& path) const = 0;
  virtual bool remove(const QString& path) = 0;
  // Copies from to a path that must not exist yet.
  virtual bool copy(const QString& from, const QString& to) = 0;
  virtual bool move(const QString& from, const QString& to) = 0;
  // Sets a user extended attribute ("user.quillery.creator", ...) on a file.
  virtual bool setExtendedAttribute(const QString& path, const QString& name,
                                    const QByteArray& value) = 0;
};

}  // namespace quillery::platform
