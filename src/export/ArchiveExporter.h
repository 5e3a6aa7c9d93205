#pragma once

#include <QString>

#include "archive/Archive.h"
#include "export/ExportPorts.h"
#include "export/MessageRows.h"

namespace quillery::exporting {

class ExportSession;

// Copies the messages of the result list into a new archive file of their own, which the
// program can open or merge later. The messages are those of the archive's idList, in the
// order the list was retrieved (its sort plays no part, and rows only removed from the list
// are still copied); each gets the next id of the new file, 1, 2, 3, ..., and its tags,
// attachments and, when origState is on, its raw source follow it. The new file is attached
// to the archive connection as "mergee" and filled with INSERT statements whose texts are
// escaped as storing escapes them, so a backslash arrives doubled.
class ArchiveExporter {
 public:
  ArchiveExporter(ExportPorts& ports, QString& exportPath)
      : ports_(ports), exportPath_(exportPath), rows_(ports.archive) {}

  // Asks for the file ("Save Exported Quillery Database File", the name used as typed) and
  // copies with writeArchive(). A cancelled panel empties exportPath.
  ExportOutcome exportDb(bool origState);

  // Replaces any file at path with a new archive file holding the four empty tables, then
  // copies the listed messages into it in one transaction and ends with the completion
  // alert. The new file stays on disk after any later failure. A failure to make it shows
  // SQLite's message; one to attach it, or any failed read or insert of the copy (a full
  // disk among them), shows "SQL error: %s" and leaves the copy uncommitted, so the new file
  // holds no message at all rather than part of one. The archive file is never written.
  ExportOutcome writeArchive(const QString& path, bool origState);

 private:
  // Makes the new file on a connection of its own; false after the alert of a failure.
  bool createFile(ExportSession& session, const QString& path);
  bool attach(ExportSession& session, const QString& path);
  // Copies one message; false after a failure it has reported.
  bool copyOne(ExportSession& session, int id, int& copied, bool origState);
  // The reads and inserts of one message's rows, each answering the first failure.
  archive::ExecResult copyEmail(int id);
  archive::ExecResult copyTags(int id, int newId);
  archive::ExecResult copySource(int id, int newId);
  archive::ExecResult copyAttachments(int id, int newId);
  // Ends a failed copy: the transaction rolled back, the file detached, the panel closed.
  void endFailedCopy(ExportSession& session, const archive::ExecResult& result);

  ExportPorts& ports_;
  QString& exportPath_;
  MessageRows rows_;
};

}  // namespace quillery::exporting
