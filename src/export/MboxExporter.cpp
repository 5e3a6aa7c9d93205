#include "export/MboxExporter.h"

#include "archive/Archive.h"
#include "export/ExportSession.h"
#include "export/MboxDate.h"
#include "export/NonLossyAscii.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/Emailrow.h"
#include "text/LeadingInt.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

constexpr char kBoundaryLine[] = "\n--QuilleryBoundary\n";

bool isTextType(const QString& type) {
  return type.contains(QLatin1String("text/"), Qt::CaseInsensitive);
}

}  // namespace

ExportOutcome MboxExporter::exportMbox() {
  const QString path =
      ExportSession::chooseExportPath(ports_.dialogs, QStringLiteral("Save Exported Mbox File"),
                                      QStringLiteral("mbox"), exportPath_);
  if (path.isEmpty())
    return ExportOutcome::Cancelled;
  return writeMbox(path);
}

ExportOutcome MboxExporter::writeMbox(const QString& path) {
  exportPath_ = path;
  ExportSession session(ports_);
  return session.writeList(
      path, {}, QStringLiteral("mbox file"),
      [&](int position, ExportWriter& out) { return exportOne(session, position, out); });
}

ExportSession::Step MboxExporter::exportOne(ExportSession& session, int position,
                                            ExportWriter& out) {
  const search::Emailrow& row = session.rowAt(position);
  const archive::ExecResult read = rows_.readRawSource(MessageRows::kOrigStatement, row.emailID());
  if (!read.ok()) {
    session.showSqlError(read);
    return ExportSession::Step::ReadFailedPanelUp;
  }
  QString& raw = ports_.archive.sqlResult;
  if (raw.isEmpty())
    return writeRebuilt(session, row.emailID(), position, out);
  text::PlistTrailer::stripPlist(raw);
  ports_.progress.doProgressCount(position, 10);
  writeRawSource(row, raw, out);
  return ExportSession::Step::Written;
}

void MboxExporter::writeRawSource(const search::Emailrow& row, QString& raw, ExportWriter& out) {
  bytes_.resize(0);
  if (!raw.startsWith(QLatin1String("From "))) {
    // The list's date of a tagged message ends in "*"; the date is read from what precedes.
    const QString separator = QStringLiteral("From ") + row.emailFrom() + QStringLiteral("  ") +
                              QString::fromLatin1(MboxDate::separatorForm(row.emailDate())) +
                              QLatin1Char('\n');
    NonLossyAscii::appendEncoded(bytes_, separator);
  }
  NonLossyAscii::appendEncoded(bytes_, raw);
  bytes_.append("\n\n");
  out.write(bytes_);
}

ExportSession::Step MboxExporter::writeRebuilt(ExportSession& session, int id, int position,
                                               ExportWriter& out) {
  // Every read of the message comes before its first byte is written.
  archive::ExecResult read = rows_.readEmail(id);
  if (read.ok())
    read = rows_.readAttachments(id);
  if (!read.ok()) {
    session.showSqlError(read);
    return ExportSession::Step::ReadFailed;
  }
  const archive::EmailRecord& record = rows_.record;
  QString body = record.recBody;
  MessageRows::cutAttachmentList(body);
  const std::optional<MboxDate> date = MboxDate::parse(record.recDate);
  QString text = QStringLiteral("From ") + record.recMailto + QLatin1Char(' ') +
                 QString::fromLatin1(date ? date->separatorForm() : QByteArray()) +
                 QStringLiteral("\nMIME-Version: 1.0\nTo: ") + record.recTo +
                 QStringLiteral("\nFrom: ") + record.recFrom + QStringLiteral("\nDate: ") +
                 QString::fromLatin1(date ? date->headerForm() : QByteArray()) +
                 QStringLiteral("\nSubject: ") + record.recSubject +
                 QStringLiteral("\nReply-To: ") + record.recMailto + QLatin1Char('\n');
  ports_.progress.doProgressCount(position, 10);
  if (ports_.archive.columnValues.isEmpty()) {
    text += QStringLiteral("Content-Type: text/plain\nContent-Transfer-Encoding: 7bit\n\n") + body +
            QStringLiteral("\n\n");
  } else {
    appendParts(text, body);
  }
  out.write(text.toUtf8());
  return ExportSession::Step::Written;
}

void MboxExporter::appendParts(QString& text, const QString& body) const {
  const QStringList& values = ports_.archive.columnValues;
  const qsizetype attachments = values.size() / 4;
  bool mixed = false;
  for (qsizetype k = 0; k < attachments; ++k) {
    if (!isTextType(values[4 * k]) || text::leadingInt(values[4 * k + 2]) != 0)
      mixed = true;
  }
  text += QStringLiteral("Content-Type: ") +
          (mixed ? QStringLiteral("multipart/mixed") : QStringLiteral("multipart/alternative")) +
          QStringLiteral("; boundary=QuilleryBoundary\n");
  // The body part's encoding header is written with an underscore, as it always has been.
  if (!body.isEmpty())
    text += QLatin1String(kBoundaryLine) +
            QStringLiteral("Content-Type: text/plain\nContent_Transfer-Encoding: 7bit\n\n") + body +
            QLatin1Char('\n');
  for (qsizetype k = 0; k < attachments; ++k) {
    const QString& type = values[4 * k];
    const bool base64 = text::leadingInt(values[4 * k + 2]) != 0;
    text += QLatin1String(kBoundaryLine) +
            (base64 ? QStringLiteral("Content-Transfer-Encoding: base64\n")
                    : QStringLiteral("Content-Transfer-Encoding: 7bit\n")) +
            QStringLiteral("Content-Type: ") + type + QStringLiteral("; name=\"") +
            values[4 * k + 1] + QStringLiteral("\"\n");
    // A plain non-text part of a mixed message carries no disposition line.
    text += mixed && (base64 || isTextType(type))
                ? QStringLiteral("Content-Disposition: attachment\n\n")
                : QStringLiteral("\n");
    text += QStringView(values[4 * k + 3]).trimmed();
    text += QStringLiteral("\n\n");
  }
  text += QStringLiteral("\n--QuilleryBoundary--\n\n");
}

}  // namespace quillery::exporting
