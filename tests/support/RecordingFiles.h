#pragma once

#include <QList>

#include "platform/qt/QtFiles.h"

namespace quillery::test {

// The real file operations, recording the extended attributes asked for, so a test can
// check them where the file system has none (tmpfs without user xattrs).
class RecordingFiles : public platform::QtFiles {
 public:
  bool setExtendedAttribute(const QString& path, const QString& name,
                            const QByteArray& value) override {
    requested.append({path, name, value});
    return QtFiles::setExtendedAttribute(path, name, value);
  }
  struct Request {
    QString path;
    QString name;
    QByteArray value;
  };
  QList<Request> requested;
};

}  // namespace quillery::test
