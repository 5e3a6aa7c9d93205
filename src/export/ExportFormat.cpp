#include "export/ExportFormat.h"

#include "export/ArchiveExporter.h"
#include "export/MboxExporter.h"
#include "export/SqlDumpExporter.h"
#include "export/TabExporter.h"
#include "export/TextSaver.h"

namespace quillery::exporting {

const QStringList& exportFormatNames() {
  static const QStringList kNames = {"mbox", "sql", "archive", "tab", "text", "source", "list"};
  return kNames;
}

std::optional<ExportFormat> exportFormatNamed(const QString& name) {
  const qsizetype index = exportFormatNames().indexOf(name);
  return index < 0 ? std::nullopt : std::optional(ExportFormat(index));
}

ExportOutcome exportList(ExportPorts& ports, const ExportRequest& request) {
  QString exportPath;
  const QString& path = request.path;
  switch (request.format) {
    case ExportFormat::Mbox:
      return MboxExporter(ports, exportPath).writeMbox(path);
    case ExportFormat::Sql:
      return SqlDumpExporter(ports, exportPath)
          .writeScript(path, request.firstId, request.origState);
    case ExportFormat::Archive:
      return ArchiveExporter(ports, exportPath).writeArchive(path, request.origState);
    case ExportFormat::Tab:
      return TabExporter(ports, exportPath).writeTab(path, request.origState);
    case ExportFormat::Text:
      return TextSaver(ports).saveAll(path);
    case ExportFormat::Source:
      return TextSaver(ports).saveOrigAll(path);
    case ExportFormat::List:
      return TextSaver(ports).saveList(path);
  }
  return ExportOutcome::Failed;
}

}  // namespace quillery::exporting
