#pragma once

#include <QByteArray>
#include <QString>

#include "export/ExportPorts.h"
#include "export/ExportSession.h"
#include "export/MessageRows.h"

namespace quillery::search {
class Emailrow;
}

namespace quillery::exporting {

// Writes every message of the result list, in the order the user sees it, into one mbox
// file that any mail client reads. A message's stored raw source is written as it stands
// (its plist trailer cut) in the non-lossy ASCII form; a message without one is rebuilt as a
// MIME message from its email and attachments rows, in UTF-8. Lines end in a line feed;
// "From " lines inside a message are not quoted.
class MboxExporter {
 public:
  MboxExporter(ExportPorts& ports, QString& exportPath)
      : ports_(ports), exportPath_(exportPath), rows_(ports.archive) {}

  // Asks for the file ("Save Exported Mbox File", the name ending in ".mbox") and writes it
  // with writeMbox(). A cancelled panel empties exportPath and does nothing else.
  ExportOutcome exportMbox();

  // Writes the list into the file at path (replacing it) and ends with the completion alert.
  // A failed read of a message shows "SQL error: %s" and a failed write (a full disk) says
  // which file could not be written; either way the export stops, the file keeps the
  // messages written before, whole, and the reading transaction is not committed. The
  // progress panel stays up after a failed raw-source read, as it always has.
  ExportOutcome writeMbox(const QString& path);

 private:
  ExportSession::Step exportOne(ExportSession& session, int position, ExportWriter& out);
  void writeRawSource(const search::Emailrow& row, QString& raw, ExportWriter& out);
  ExportSession::Step writeRebuilt(ExportSession& session, int id, int position, ExportWriter& out);
  // The multipart body of a rebuilt message with attachments.
  void appendParts(QString& text, const QString& body) const;

  ExportPorts& ports_;
  QString& exportPath_;
  MessageRows rows_;
  QByteArray bytes_;  // the message being encoded, reused from message to message
};

}  // namespace quillery::exporting
