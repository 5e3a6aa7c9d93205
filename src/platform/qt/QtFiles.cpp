#include "platform/qt/QtFiles.h"

#include <sys/xattr.h>

#include <QFile>
#include <QFileInfo>

namespace quillery::platform {

bool QtFiles::exists(const QString& path) const {
  return QFileInfo::exists(path);
}

bool QtFiles::remove(const QString& path) {
  return QFile::remove(path);
}

bool QtFiles::copy(const QString& from, const QString& to) {
  return QFile::copy(from, to);
}

bool QtFiles::move(const QString& from, const QString& to) {
  return QFile::rename(from, to);
}

bool QtFiles::setExtendedAttribute(const QString& path, const QString& name,
                                   const QByteArray& value) {
  const QByteArray file = QFile::encodeName(path);
  const QByteArray key = name.toUtf8();
  return ::setxattr(file.constData(), key.constData(), value.constData(),
                    static_cast<size_t>(value.size()), 0) == 0;
}

}  // namespace quillery::platform
