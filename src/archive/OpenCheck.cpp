#include "archive/OpenCheck.h"

#include <sqlite3.h>

namespace quillery::archive {

ExecResult openCheck(const QString& path) {
  sqlite3* connection = nullptr;
  const QByteArray name = path.toUtf8();
  ExecResult result;
  // SQLite would take an empty name as a private temporary database.
  result.code = path.isEmpty() ? SQLITE_CANTOPEN
                               : sqlite3_open_v2(name.constData(), &connection,
                                                 SQLITE_OPEN_READWRITE, nullptr);
  if (result.code != SQLITE_OK) {
    result.error =
        QString::fromUtf8(connection ? sqlite3_errmsg(connection) : sqlite3_errstr(result.code));
  }
  // A failed open still hands back a handle to release.
  sqlite3_close(connection);
  return result;
}

}  // namespace quillery::archive
