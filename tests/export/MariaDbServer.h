#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "StoredArchive.h"

namespace quillery::test {

// A MariaDB server of the test's own: a fresh data folder (in memory where /dev/shm is
// there), a private socket, no networking, text stored as utf8mb4 as Debian configures it.
// start() starts it; stop(), or the destruction, stops it whatever happened in between.
class MariaDbServer {
 public:
  ~MariaDbServer() { stop(); }

  // Why the server cannot run here (its programs are not installed), or "".
  static QString missingPrograms();
  // Makes the data folder and starts the server; "" or what went wrong.
  QString start();
  void stop();

  // Loads a script through the mariadb client, with an --init-command when one is given.
  ProgramResult load(const QString& scriptPath, const QString& initCommand = {}) const;
  // Runs statements; "" or the client's error output.
  QString execute(const QString& sql) const;
  // The rows of a query whose every column the caller has wrapped in HEX(), decoded here
  // from UTF-8, so no client formatting touches them.
  QList<QStringList> rows(const QString& database, const QString& sql) const;
  // Every row of the four tables of an archive script's database, as "table|col|col|...",
  // sorted.
  QStringList tableRows(const QString& database) const;

 private:
  ProgramResult client(const QStringList& arguments, const QByteArray& input = {}) const;

  std::unique_ptr<QTemporaryDir> dir_;
  std::unique_ptr<QProcess> server_;
};

}  // namespace quillery::test
