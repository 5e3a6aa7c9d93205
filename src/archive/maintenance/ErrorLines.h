#pragma once

#include <QString>
#include <functional>

#include "archive/Archive.h"

namespace quillery::maintenance {

// Where a line about a failure that does not stop the work goes: the caller decides (the
// store run's log while it has one open, else standard error).
using LineSink = std::function<void(const QString& line)>;

// Writes the text to standard error as it stands and flushes it.
void writeToStandardError(const QString& text);
// "SQL error: %s\n" with SQLite's error text on standard error, when the result is a failure.
void reportOnStandardError(const archive::ExecResult& result);

}  // namespace quillery::maintenance
