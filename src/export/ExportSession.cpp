#include "export/ExportSession.h"

#include <QFileInfo>
#include <cstdio>

#include "archive/Archive.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"

namespace quillery::exporting {
namespace {

void reportOnStderr(const archive::ExecResult& result) {
  if (!result.ok())
    std::fprintf(stderr, "SQL error: %s\n", result.error.toUtf8().constData());
}

}  // namespace

ExportSession::~ExportSession() = default;

QString ExportSession::chooseExportPath(platform::Dialogs& dialogs, const QString& title,
                                        const QString& requiredFileType, QString& exportPath,
                                        const QString& nameFieldLabel) {
  platform::SavePanel panel;
  panel.title = title;
  panel.prompt = QStringLiteral("Export");
  panel.nameFieldLabel = nameFieldLabel;
  panel.requiredFileType = requiredFileType;
  exportPath = dialogs.runSavePanel(panel);
  return exportPath;
}

bool ExportSession::refuseArchiveFile(const QString& path) {
  const QString archivePath = ports_.archive.filePath();
  if (archivePath.isEmpty() || path.isEmpty())
    return false;
  const QFileInfo target(path);
  const QFileInfo open(archivePath);
  if (!target.exists() || target.canonicalFilePath() != open.canonicalFilePath())
    return false;
  ports_.dialogs.critical(
      QStringLiteral("Export Failed"),
      QStringLiteral("%1 is the archive file that is open. Choose another file for the export.")
          .arg(path));
  return true;
}

std::unique_ptr<ExportWriter> ExportSession::openOutput(const QString& path) {
  if (refuseArchiveFile(path))
    return nullptr;
  return ports_.openWriter(path);
}

void ExportSession::beginTransaction() {
  const archive::ExecResult result = ports_.archive.exec(QStringLiteral("BEGIN TRANSACTION"));
  reportOnStderr(result);
  began_ = result.ok();
}

void ExportSession::commitTransaction() {
  reportOnStderr(ports_.archive.exec(QStringLiteral("COMMIT TRANSACTION")));
  began_ = false;
}

void ExportSession::abandonTransaction() {
  if (began_)
    ports_.archive.exec(QStringLiteral("ROLLBACK TRANSACTION"));
  began_ = false;
}

void ExportSession::execReportingOnStderr(const QString& sql) {
  reportOnStderr(ports_.archive.exec(sql));
}

void ExportSession::openProgress(const QString& title) {
  ports_.progress.showCount(QStringLiteral("0"));
  ports_.progress.setRunControlsVisible(true, platform::Progress::RunControls::Count);
  ports_.progress.open(title);
}

void ExportSession::closeProgress(Count count) {
  if (count == Count::Hide)
    ports_.progress.setRunControlsVisible(false, platform::Progress::RunControls::Count);
  ports_.progress.close();
}

void ExportSession::showSqlError(const archive::ExecResult& result) {
  ports_.dialogs.critical(QString(), QStringLiteral("SQL error: ") + result.error);
}

void ExportSession::showCannotOpen(const QString& path) {
  ports_.dialogs.critical(QString(), QStringLiteral("Couldn't open ") + path);
}

void ExportSession::showCannotWrite(const QString& path, const ExportWriter& writer) {
  ports_.dialogs.critical(QString(), QStringLiteral("Couldn't write %1: %2. The file ends with the "
                                                    "last message written whole.")
                                         .arg(path, writer.errorString()));
}

void ExportSession::showExported(const QString& kind, const QString& path) {
  ports_.dialogs.inform(QString(), QStringLiteral("The data has been exported to the ") + kind +
                                       QLatin1Char(' ') + path + QLatin1Char('.'));
}

ExportOutcome ExportSession::writeList(const QString& path, const QByteArray& head,
                                       const QString& kind, const WriteMessage& writeMessage) {
  const std::unique_ptr<ExportWriter> out = openOutput(path);
  if (!out)
    return ExportOutcome::Failed;
  if (!out->isOpen()) {
    showCannotOpen(path);
    return ExportOutcome::Failed;
  }
  openProgress(QStringLiteral("Exporting..."));
  out->write(head);
  bool written = head.isEmpty() || out->endMessage();
  if (written)
    beginTransaction();
  for (int i = 0; written && i < rowCount(); ++i) {
    const Step step = writeMessage(i, *out);
    if (step != Step::Written) {
      abandonTransaction();
      out->close();
      if (step == Step::ReadFailed)
        closeProgress(Count::Keep);
      return ExportOutcome::Failed;
    }
    written = out->endMessage();
  }
  if (written)
    commitTransaction();
  else
    abandonTransaction();
  written = out->close() && written;
  closeProgress(written ? Count::Hide : Count::Keep);
  if (!written) {
    showCannotWrite(path, *out);
    return ExportOutcome::Failed;
  }
  showExported(kind, path);
  return ExportOutcome::Done;
}

const search::Emailrow& ExportSession::rowAt(int position) const {
  return ports_.list.rowAt(position);
}

int ExportSession::rowCount() const {
  return int(ports_.list.emailRows.size());
}

}  // namespace quillery::exporting
