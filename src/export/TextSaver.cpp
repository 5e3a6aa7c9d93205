#include "export/TextSaver.h"

#include <algorithm>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/Emailrow.h"
#include "search/ResultList.h"

namespace quillery::exporting {
namespace {

QList<int> ascending(QList<int> rows) {
  std::sort(rows.begin(), rows.end());
  return rows;
}

constexpr char kBlockStatement[] =
    "SELECT id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE "
    "mailbox END),body_fld FROM email WHERE id=%1";

}  // namespace

int TextSaver::printTextCallback(void* context, int columns, char** values, char** /*names*/) {
  static constexpr const char* kLabels[] = {
      "ID: ", "\nDATE: ", "\nFROM: ", "\nTO: ", "\nSUBJECT: ", "\nMAILBOX: ", "\n\n"};
  QString& block = static_cast<TextSaver*>(context)->rowText;
  block.clear();
  for (int i = 0; i < 7; ++i) {
    block += QLatin1String(kLabels[i]);
    if (i < columns && values[i] != nullptr)
      block += QString::fromUtf8(values[i]);
  }
  return 0;
}

QString TextSaver::listLine(const search::Emailrow& row) {
  const QChar tab(u'\t');
  return QString::number(row.emailID()) + tab + row.emailDate() + tab + row.emailFrom() + tab +
         row.emailTo() + tab + row.emailSubject() + tab + row.emailMailbox() + QLatin1Char('\n');
}

ExportOutcome TextSaver::saveList(const QString& savePath) {
  ExportSession session(ports_);
  const std::unique_ptr<ExportWriter> out = session.openOutput(savePath);
  if (!out)
    return ExportOutcome::Failed;
  if (!out->isOpen()) {
    session.showCannotOpen(savePath);
    return ExportOutcome::Failed;
  }
  bool written = true;
  for (int i = 0; written && i < session.rowCount(); ++i) {
    out->write(listLine(session.rowAt(i)).toUtf8());
    written = out->endMessage();
  }
  if (!out->close() || !written) {
    session.showCannotWrite(savePath, *out);
    return ExportOutcome::Failed;
  }
  ports_.dialogs.inform(
      QString(), QStringLiteral("This list has been saved to ") + savePath + QLatin1Char('.'));
  return ExportOutcome::Done;
}

ExportOutcome TextSaver::saveSelected(const QString& savePath, QList<int> selectedRows) {
  if (savePath.isEmpty())
    return ExportOutcome::Cancelled;
  return saveMessages(savePath, Kind::Blocks, {false, ascending(std::move(selectedRows))}, true);
}

ExportOutcome TextSaver::saveAll(const QString& savePath) {
  return saveMessages(savePath, Kind::Blocks, {}, false);
}

ExportOutcome TextSaver::saveOrigSelected(const QString& savePath, QList<int> selectedRows) {
  return saveMessages(savePath, Kind::RawSources, {false, ascending(std::move(selectedRows))},
                      true);
}

ExportOutcome TextSaver::saveOrigAll(const QString& savePath) {
  return saveMessages(savePath, Kind::RawSources, {}, true);
}

std::optional<QString> TextSaver::printText(QList<int> selectedRows, bool all) {
  const Walk walk{all, ascending(std::move(selectedRows))};
  QString text;
  for (int i = 0; i < walkSize(walk); ++i) {
    const search::Emailrow* row = walkRow(walk, i);
    if (row == nullptr)
      continue;
    const archive::ExecResult read = readBlock(row->emailID());
    if (!read.ok()) {
      ports_.dialogs.critical(QString(), QStringLiteral("SQL error: ") + read.error);
      return std::nullopt;
    }
    text += rowText + QStringLiteral("\n\n");
  }
  return text;
}

ExportOutcome TextSaver::saveMessages(const QString& savePath, Kind kind, Walk walk, bool checked) {
  ExportSession session(ports_);
  if (session.refuseArchiveFile(savePath))
    return ExportOutcome::Failed;
  const std::unique_ptr<ExportWriter> out = ports_.openWriter(savePath);
  if (checked && !out->isOpen()) {
    // The raw-source saves end silently here, as they always have.
    if (kind == Kind::Blocks)
      session.showCannotOpen(savePath);
    return ExportOutcome::Failed;
  }
  session.openProgress(QStringLiteral("Saving..."));
  session.beginTransaction();
  int sourcesWritten = 0;
  for (int i = 0; i < walkSize(walk); ++i) {
    const search::Emailrow* row = walkRow(walk, i);
    if (row == nullptr)
      continue;
    const Step step = kind == Kind::Blocks
                          ? writeBlock(*row, i, *out)
                          : writeRawSource(*row, walk.all ? i : sourcesWritten, *out);
    if (step == Step::ReadFailed) {
      session.abandonTransaction();
      out->close();
      return ExportOutcome::Failed;
    }
    if (step == Step::Skipped)
      continue;
    ++sourcesWritten;
    // An unopened file (saveAll does not check) takes nothing and fails nothing.
    if (out->isOpen() && !out->endMessage()) {
      session.abandonTransaction();
      out->close();
      session.closeProgress(ExportSession::Count::Keep);
      session.showCannotWrite(savePath, *out);
      return ExportOutcome::Failed;
    }
  }
  session.commitTransaction();
  session.closeProgress();
  const bool wasOpen = out->isOpen();
  if (!out->close() && wasOpen) {
    session.showCannotWrite(savePath, *out);
    return ExportOutcome::Failed;
  }
  ports_.dialogs.inform(
      QString(), QLatin1String(kind == Kind::Blocks ? "The email in the list has been saved to "
                                                      "the text file "
                                                    : "The raw source email in the list has "
                                                      "been saved to the text file ") +
                     savePath + QLatin1Char('.'));
  return ExportOutcome::Done;
}

TextSaver::Step TextSaver::writeBlock(const search::Emailrow& row, int number, ExportWriter& out) {
  const archive::ExecResult read = readBlock(row.emailID());
  if (!read.ok()) {
    ports_.dialogs.critical(QString(), QStringLiteral("SQL error: ") + read.error);
    return Step::ReadFailed;
  }
  ports_.progress.doProgressCount(number, 10);
  out.write((rowText + QStringLiteral("\n\n")).toUtf8());
  return Step::Written;
}

TextSaver::Step TextSaver::writeRawSource(const search::Emailrow& row, int number,
                                          ExportWriter& out) {
  archive::Archive& archive = ports_.archive;
  archive.sqlResult.clear();
  archive.sqlText.clear();
  const archive::ExecResult read =
      archive.exec(QStringLiteral("SELECT orig_fld FROM origemail WHERE id=%1").arg(row.emailID()),
                   archive::singleValueCallback, &archive);
  if (!read.ok()) {
    ports_.dialogs.critical(QString(), QStringLiteral("SQL error: ") + read.error);
    return Step::ReadFailed;
  }
  if (archive.sqlResult.isEmpty())
    return Step::Skipped;
  ports_.progress.doProgressCount(number, 10);
  // The source is written as stored: unlike the structured exports, no plist trailer is cut.
  if (!archive.sqlResult.startsWith(QLatin1String("From ")))
    out.write((QStringLiteral("From ") + row.emailFrom() + QStringLiteral("  ") + row.emailDate() +
               QLatin1Char('\n'))
                  .toUtf8());
  out.write(archive.sqlResult.toUtf8());
  out.write("\n\n");
  return Step::Written;
}

archive::ExecResult TextSaver::readBlock(int id) {
  return ports_.archive.exec(QString::fromLatin1(kBlockStatement).arg(id),
                             &TextSaver::printTextCallback, this);
}

int TextSaver::walkSize(const Walk& walk) const {
  return walk.all ? int(ports_.list.emailRows.size()) : int(walk.rows.size());
}

const search::Emailrow* TextSaver::walkRow(const Walk& walk, int i) const {
  const int displayRow = walk.all ? i : walk.rows.at(i);
  if (displayRow < 0 || displayRow >= ports_.list.emailRows.size())
    return nullptr;
  return &ports_.list.rowAt(displayRow);
}

}  // namespace quillery::exporting
