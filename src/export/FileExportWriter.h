#pragma once

#include <QByteArray>

#include "export/ExportWriter.h"

namespace quillery::exporting {

// An export written into a file. Opening creates the file or empties an existing one, as
// every export does before it writes. A message is kept in memory until it ends and then
// written in one go; a failed write (a full disk, an output that cannot take more) cuts the
// file back to the end of the message before, so the file holds whole messages only.
class FileExportWriter : public ExportWriter {
 public:
  explicit FileExportWriter(const QString& path);
  ~FileExportWriter() override;
  FileExportWriter(const FileExportWriter&) = delete;
  FileExportWriter& operator=(const FileExportWriter&) = delete;

  // The factory of every export that writes a file.
  static std::unique_ptr<ExportWriter> open(const QString& path);

  bool isOpen() const override { return fd_ >= 0; }
  void write(QByteArrayView bytes) override;
  bool endMessage() override;
  bool close() override;
  QString errorString() const override { return error_; }

 protected:
  // Writes up to size bytes at the end of the file as write(2) does: the number of bytes
  // written, or -1 with errno set. A test overrides it to make the output fail part way.
  virtual qint64 writeSome(const char* data, qint64 size);

 private:
  bool fail(int error);

  int fd_ = -1;
  qint64 written_ = 0;  // bytes of whole messages in the file
  QByteArray message_;
  QString error_;
};

}  // namespace quillery::exporting
