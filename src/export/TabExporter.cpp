#include "export/TabExporter.h"

#include <algorithm>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "export/ExportSession.h"
#include "export/MessageRows.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/Emailrow.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

constexpr char kHeader[] = "id\tdatetime\tfrom\tto\tsubject\tmailto\tmailbox\tbody\tnumattach";
constexpr char kRowStatement[] =
    "SELECT id,date_fld,from_fld,to_fld,subj_fld,mailto,(CASE WHEN mailbox ISNULL THEN '' ELSE "
    "mailbox END),body_fld,numAttach FROM email WHERE id=%1";

}  // namespace

void TabExporter::cleanField(QString& field) {
  // Tabs become blanks, carriage returns and line feeds vertical tabs (a CR LF pair two of
  // them), as the three replacements in turn would do; one pass, and no copy of a field that
  // has none of them.
  const auto needsCleaning = [](QChar c) { return c == u'\t' || c == u'\r' || c == u'\n'; };
  if (std::none_of(field.cbegin(), field.cend(), needsCleaning))
    return;
  for (QChar& c : field) {
    if (c == u'\t')
      c = u' ';
    else if (c == u'\r' || c == u'\n')
      c = u'\v';
  }
}

int TabExporter::tabRowCallback(void* context, int columns, char** values, char** /*names*/) {
  auto* exporter = static_cast<TabExporter*>(context);
  exporter->rowText.clear();
  for (int i = 0; i < columns; ++i) {
    QString field = QString::fromUtf8(values[i]);  // NULL gives ""
    cleanField(field);
    exporter->rowText += field;
    if (i + 1 < columns)
      exporter->rowText += QLatin1Char('\t');
  }
  return 0;
}

ExportOutcome TabExporter::exportTab(bool origState) {
  const QString path = ExportSession::chooseExportPath(
      ports_.dialogs, QStringLiteral("Save Exported Tab-Delimited File"), {}, exportPath_);
  if (path.isEmpty())
    return ExportOutcome::Cancelled;
  return writeTab(path, origState);
}

ExportOutcome TabExporter::writeTab(const QString& path, bool origState) {
  exportPath_ = path;
  ExportSession session(ports_);
  MessageRows rows(ports_.archive);
  const QByteArray header = QByteArray(kHeader) + (origState ? "\trawsource\n" : "\n");
  const auto writeLine = [&](int position, ExportWriter& out) {
    const int id = session.rowAt(position).emailID();
    const archive::ExecResult read = ports_.archive.exec(QString::fromLatin1(kRowStatement).arg(id),
                                                         &TabExporter::tabRowCallback, this);
    if (!read.ok()) {
      session.showSqlError(read);
      return ExportSession::Step::ReadFailed;
    }
    if (origState) {
      rows.readRawSource(MessageRows::kQualifiedOrigStatement, id);  // a failure is ignored
      QString& raw = ports_.archive.sqlResult;
      text::PlistTrailer::stripPlist(raw);
      cleanField(raw);
      rowText += QLatin1Char('\t') + raw;
    }
    out.write(rowText.toUtf8());
    out.write("\n");
    ports_.progress.doProgressCount(position, 10);
    return ExportSession::Step::Written;
  };
  return session.writeList(path, header, QStringLiteral("tab-delimited text file"), writeLine);
}

}  // namespace quillery::exporting
