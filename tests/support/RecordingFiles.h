#pragma once

#include <QFile>
#include <QList>

#include "platform/qt/QtFiles.h"

namespace quillery::test {

// The real file operations, recording the extended attributes asked for, so a test can
// check them where the file system has none (tmpfs without user xattrs), and failing where a
// test injects a fault.
class RecordingFiles : public platform::QtFiles {
 public:
  // A copy that fails as one onto a full disk does: the first copyFailsAfter bytes are
  // written to the target, the copy fails and the partial target is left behind. Negative:
  // copies really.
  qint64 copyFailsAfter = -1;
  // A remove that fails, as for a file in a folder the user may not change.
  bool removeFails = false;

  bool copy(const QString& from, const QString& to) override {
    if (copyFailsAfter < 0)
      return QtFiles::copy(from, to);
    QFile source(from);
    QFile target(to);
    if (source.open(QIODevice::ReadOnly) && target.open(QIODevice::NewOnly))
      target.write(source.read(copyFailsAfter));
    return false;
  }
  bool remove(const QString& path) override { return !removeFails && QtFiles::remove(path); }

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
