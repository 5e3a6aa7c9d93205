#pragma once

#include <QFile>
#include <QString>

namespace quillery::ingest {

// The store log beside the archive. It is emptied when a run opens it; writing to a log that
// failed to open does nothing, so a run never stops for want of its log. Each text is on
// disk when write returns, so the log tells what happened even if the run never ends.
class StoreLog {
 public:
  bool open(const QString& path) {
    close();
    file_.setFileName(path);
    return file_.open(QIODevice::WriteOnly | QIODevice::Truncate);
  }
  void write(const QString& text) {
    if (file_.isOpen()) {
      file_.write(text.toUtf8());
      file_.flush();
    }
  }
  void close() {
    if (file_.isOpen())
      file_.close();
  }
  bool isOpen() const { return file_.isOpen(); }

 private:
  QFile file_;
};

}  // namespace quillery::ingest
