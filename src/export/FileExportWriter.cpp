#include "export/FileExportWriter.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace quillery::exporting {

FileExportWriter::FileExportWriter(const QString& path) {
  if (path.isEmpty()) {
    error_ = QString::fromLocal8Bit(std::strerror(ENOENT));
    return;
  }
  fd_ = ::open(path.toUtf8().constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd_ < 0)
    error_ = QString::fromLocal8Bit(std::strerror(errno));
}

FileExportWriter::~FileExportWriter() {
  if (fd_ >= 0)
    ::close(fd_);
}

std::unique_ptr<ExportWriter> FileExportWriter::open(const QString& path) {
  return std::make_unique<FileExportWriter>(path);
}

void FileExportWriter::write(QByteArrayView bytes) {
  if (fd_ >= 0)
    message_.append(bytes);
}

qint64 FileExportWriter::writeSome(const char* data, qint64 size) {
  return ::write(fd_, data, size_t(size));
}

bool FileExportWriter::endMessage() {
  if (fd_ < 0) {
    message_.clear();
    return false;
  }
  const char* data = message_.constData();
  qint64 left = message_.size();
  while (left > 0) {
    const qint64 done = writeSome(data, left);
    if (done < 0 && errno == EINTR)
      continue;
    if (done <= 0)
      return fail(done < 0 ? errno : ENOSPC);
    data += done;
    left -= done;
  }
  written_ += message_.size();
  // Keeps the capacity: the next message usually needs about as much.
  message_.resize(0);
  return true;
}

bool FileExportWriter::fail(int error) {
  error_ = QString::fromLocal8Bit(std::strerror(error));
  message_.clear();
  // The part of the message that did reach the file is taken out again. A device that
  // cannot be cut (a pipe, /dev/full) has kept nothing of it anyway.
  if (::ftruncate(fd_, written_) == 0)
    ::lseek(fd_, written_, SEEK_SET);
  return false;
}

bool FileExportWriter::close() {
  message_.clear();
  if (fd_ < 0)
    return false;
  const int result = ::close(fd_);
  fd_ = -1;
  if (result != 0) {
    error_ = QString::fromLocal8Bit(std::strerror(errno));
    return false;
  }
  return true;
}

}  // namespace quillery::exporting
