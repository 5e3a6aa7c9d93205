#pragma once

#include <sqlite3.h>

#include <QFile>
#include <QStringList>

#include "support/QtPrinters.h"

namespace quillery::test {

// Writes the bytes as the whole file; false when it can't be written.
inline bool writeFile(const QString& path, const QByteArray& bytes, bool executable = false) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
    return false;
  file.close();
  return !executable || file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

// The file as UTF-8 text; "" when it can't be read.
inline QString readFile(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// An archive file read and written on a connection of the test's own, as another program
// would, so that a test sees what the file holds rather than what a connection of the
// application keeps.

// Every row of the query as the list of its columns (NULL as ""); the rows read before a
// failure, so none when the file can't be opened or the query is wrong.
inline QList<QStringList> tableOf(const QString& file, const QString& sql) {
  QList<QStringList> rows;
  sqlite3* db = nullptr;
  if (sqlite3_open_v2(file.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK)
    sqlite3_exec(
        db, sql.toUtf8().constData(),
        [](void* rowList, int columns, char** values, char**) {
          QStringList row;
          for (int c = 0; c < columns; ++c)
            row.append(QString::fromUtf8(values[c]));
          static_cast<QList<QStringList>*>(rowList)->append(row);
          return 0;
        },
        &rows, nullptr);
  sqlite3_close(db);
  return rows;
}

// Every row of the query, its columns joined by '|'.
inline QStringList rowsOf(const QString& file, const QString& sql) {
  QStringList rows;
  for (const QStringList& row : tableOf(file, sql))
    rows.append(row.join(QLatin1Char('|')));
  return rows;
}

// Runs the statements on the file, creating it when it is not there; SQLite's error message,
// or "" when every statement succeeded.
inline QString execOn(const QString& file, const QString& sql) {
  sqlite3* db = nullptr;
  char* error = nullptr;
  QString out;
  if (sqlite3_open(file.toUtf8().constData(), &db) != SQLITE_OK)
    out = QString::fromUtf8(sqlite3_errmsg(db));
  else if (sqlite3_exec(db, sql.toUtf8().constData(), nullptr, nullptr, &error) != SQLITE_OK)
    out = QString::fromUtf8(error ? error : "failed");
  sqlite3_free(error);
  sqlite3_close(db);
  return out;
}

}  // namespace quillery::test
