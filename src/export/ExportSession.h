#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>

#include "export/ExportPorts.h"

namespace quillery::archive {
struct ExecResult;
}
namespace quillery::search {
class Emailrow;
}
namespace quillery::platform {
class Dialogs;
}

namespace quillery::exporting {

// The steps that every export shares: the reading transaction on the archive connection,
// the output file, the progress panel and the alerts. One session serves one export run.
class ExportSession {
 public:
  explicit ExportSession(ExportPorts& ports) : ports_(ports) {}
  ~ExportSession();
  ExportSession(const ExportSession&) = delete;
  ExportSession& operator=(const ExportSession&) = delete;

  // Runs the save panel of a structured export (its title, the prompt "Export", folders may
  // be made, and the file type it requires, if any) and keeps the chosen path in exportPath,
  // which becomes "" when the user cancels. Returns that path.
  static QString chooseExportPath(platform::Dialogs& dialogs, const QString& title,
                                  const QString& requiredFileType, QString& exportPath,
                                  const QString& nameFieldLabel = {});

  // Opens the output. A path that names the archive file open on the connection is refused
  // with a critical alert (emptying it would destroy the archive) and gives nothing; else
  // the writer, open or not (the caller decides what a failed open means).
  std::unique_ptr<ExportWriter> openOutput(const QString& path);
  // True, after a critical alert, when path is the open archive file.
  bool refuseArchiveFile(const QString& path);

  // "BEGIN TRANSACTION" and "COMMIT TRANSACTION"; their failures go to the standard error
  // stream as "SQL error: %s\n" and the export goes on.
  void beginTransaction();
  void commitTransaction();
  // After a failure: the transaction begun here is rolled back instead of committed, so the
  // connection is left without one; the archive file is not changed either way.
  void abandonTransaction();
  // Runs a statement and reports its failure on the standard error stream.
  void execReportingOnStderr(const QString& sql);

  // Shows "0" and opens the progress panel with this title.
  void openProgress(const QString& title);
  // Closes the progress panel, hiding its count first unless told to leave it (as several
  // failures do).
  enum class Count { Hide, Keep };
  void closeProgress(Count count = Count::Hide);

  // The critical alert "SQL error: %s" with SQLite's message.
  void showSqlError(const archive::ExecResult& result);
  // The critical alert "Couldn't open %s" with the path.
  void showCannotOpen(const QString& path);
  // The critical alert of an output that failed part way.
  void showCannotWrite(const QString& path, const ExportWriter& writer);
  // "The data has been exported to the %@ %@." with the kind of file and the path.
  void showExported(const QString& kind, const QString& path);

  // The row at list position i, as the user sees the list (reversed when sortDescending).
  const search::Emailrow& rowAt(int position) const;
  // The number of rows in the list now.
  int rowCount() const;

  // What writing one message came to. A failed read has shown its alert already; after
  // most the progress panel is closed, after some it stays up, as those exports always did.
  enum class Step { Written, ReadFailed, ReadFailedPanelUp };
  // Writes one message of the list at a position into out (without ending it).
  using WriteMessage = std::function<Step(int position, ExportWriter& out)>;

  // The course of a streamed export of the list into the file at path: the file is made
  // ("Couldn't open %s" when it cannot be), the progress panel opened with "Exporting...",
  // head written as a whole of its own, the reading transaction begun, each position of the
  // list written and ended in turn, the transaction committed, the file closed and the
  // completion alert shown for a file of this kind. On a failed read or write the export
  // stops at once with the file ending after the last whole message, the transaction not
  // committed and no completion alert; a failed write is named in an alert of its own.
  ExportOutcome writeList(const QString& path, const QByteArray& head, const QString& kind,
                          const WriteMessage& writeMessage);

 private:
  ExportPorts& ports_;
  bool began_ = false;
};

}  // namespace quillery::exporting
