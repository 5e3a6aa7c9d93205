#pragma once

#include <QByteArrayView>
#include <QString>
#include <functional>
#include <memory>

namespace quillery::exporting {

// Where an export's bytes go. An export hands over its output one message at a time (a
// file's head line or statements count as one message too): write() adds to the message
// being made, endMessage() puts it into the output whole. When the output fails part way
// through a message, that message is taken out again, so the output ends with the last
// whole message and never with part of one.
class ExportWriter {
 public:
  virtual ~ExportWriter() = default;

  // False when the output could not be opened; errorString() says why. Nothing reaches a
  // writer that is not open, and its endMessage() and close() fail.
  virtual bool isOpen() const = 0;
  // Adds bytes to the message being made.
  virtual void write(QByteArrayView bytes) = 0;
  // Puts the message made since the last call into the output. On failure the output is cut
  // back to the end of the message before, the message is dropped and the result is false.
  virtual bool endMessage() = 0;
  // Ends the output; a message not yet ended is dropped. False when the output could not
  // be completed (errorString() says why); what was ended before stays.
  virtual bool close() = 0;
  // Why the last open, write or close failed, as the system words it.
  virtual QString errorString() const = 0;
};

// Makes the writer of one export, for the file at path.
using WriterFactory = std::function<std::unique_ptr<ExportWriter>(const QString& path)>;

}  // namespace quillery::exporting
