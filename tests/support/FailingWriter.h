#pragma once

#include <QList>
#include <cerrno>
#include <limits>
#include <memory>

#include "export/FileExportWriter.h"

namespace quillery::test {

// A file writer whose output takes only so many bytes and then fails as a full disk does
// (ENOSPC), after writing the part of the last write that still fitted, so the file really
// holds part of a message when the failure comes. It can also record the size of the file
// after each whole message, which tells a test where the messages of an export end.
class FailingWriter : public exporting::FileExportWriter {
 public:
  static constexpr qint64 kNoLimit = std::numeric_limits<qint64>::max();

  FailingWriter(const QString& path, qint64 bytesThatFit, QList<qint64>* messageEnds)
      : FileExportWriter(path), left_(bytesThatFit), messageEnds_(messageEnds) {}

  // A factory for the exports: every writer takes that many bytes, and records where its
  // messages end into messageEnds when one is given.
  static exporting::WriterFactory after(qint64 bytesThatFit, QList<qint64>* messageEnds = nullptr) {
    return [bytesThatFit, messageEnds](const QString& path) {
      return std::make_unique<FailingWriter>(path, bytesThatFit, messageEnds);
    };
  }

  bool endMessage() override {
    const bool whole = FileExportWriter::endMessage();
    if (whole && messageEnds_)
      messageEnds_->append(written_);
    return whole;
  }

 protected:
  qint64 writeSome(const char* data, qint64 size) override {
    if (left_ <= 0) {
      errno = ENOSPC;
      return -1;
    }
    const qint64 done = FileExportWriter::writeSome(data, size < left_ ? size : left_);
    if (done > 0) {
      left_ -= done;
      written_ += done;
    }
    return done;
  }

 private:
  qint64 left_;
  qint64 written_ = 0;
  QList<qint64>* messageEnds_;
};

}  // namespace quillery::test
