#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "export/ExportPorts.h"

namespace quillery::exporting {

// The forms in which the whole result list can be written to a file, by the names that
// quillery-cli gives them: "mbox", "sql", "archive", "tab", "text" (text blocks), "source"
// (raw sources) and "list" (list lines).
enum class ExportFormat { Mbox, Sql, Archive, Tab, Text, Source, List };

// One export of the whole list: its format, its file, the first number of an SQL script and
// whether raw sources go into the formats that carry them (the "origState" preference).
struct ExportRequest {
  ExportFormat format = ExportFormat::Mbox;
  QString path;
  int firstId = 1;
  bool origState = true;
};

// The format names in the order of the enumeration.
const QStringList& exportFormatNames();
std::optional<ExportFormat> exportFormatNamed(const QString& name);

// Writes the whole list as the window's export, save or list save of that format does once
// its panels have been answered, with the same alerts and failure behaviour.
ExportOutcome exportList(ExportPorts& ports, const ExportRequest& request);

}  // namespace quillery::exporting
