#pragma once

#include <QString>
#include <cstdio>

namespace quillery::cli {

// What quillery-cli answers its caller: 0 the command did its work (a store run also when
// some files were invalid); 1 the archive could not be opened, the work could not start, or
// an alert reported an error; 2 the command line is wrong.
enum ExitCode { kOk = 0, kFailed = 1, kUsage = 2 };

// Writes text as UTF-8 and flushes, so that output and error lines keep their order.
void print(FILE* stream, const QString& text);
// Says what is wrong with the command line on standard error and returns kUsage.
int usageError(const QString& message);

}  // namespace quillery::cli
