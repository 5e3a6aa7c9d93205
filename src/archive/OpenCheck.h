#pragma once

#include <QString>

#include "archive/Archive.h"

namespace quillery::archive {

// Opens the file at path with SQLite on a connection of its own and closes it again at once,
// touching no shared state. The result is SQLite's code and sqlite3_errmsg when the open
// failed, and ok otherwise. SQLite opens lazily, so this only catches what the open itself
// refuses (a folder, a file that cannot be read); a file that is not a database passes. A
// missing file is not created: it fails with SQLITE_CANTOPEN, as an empty path does.
ExecResult openCheck(const QString& path);

}  // namespace quillery::archive
