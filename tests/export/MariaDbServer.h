#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>

#include "StoredArchive.h"

namespace quillery::test {

// A MariaDB server of the test's own: a fresh data folder (in memory where /dev/shm is
// there), a private socket, no networking, started by start() and stopped by stop() or at
// destruction, whatever happened in between.
class MariaDbServer {
 public:
  MariaDbServer() = default;
  ~MariaDbServer() { stop(); }
  MariaDbServer(const MariaDbServer&) = delete;
  MariaDbServer& operator=(const MariaDbServer&) = delete;

  // Why the server cannot run here (its programs are not installed), or "".
  static QString missingPrograms();

  // Makes the data folder and starts the server; "" or what went wrong.
  QString start();
  void stop();

  // Runs a script through the mariadb client, with an --init-command when one is given.
  ProgramResult load(const QString& scriptPath, const QString& initCommand = {}) const;
  // The rows of a query in a database, each column given to the server wrapped in HEX() by
  // the caller and decoded here from UTF-8; NULL reads as "".
  QList<QStringList> rows(const QString& database, const QString& sql) const;
  // Runs statements; "" or the client's error output.
  QString execute(const QString& sql) const;

 private:
  QStringList clientArguments() const;

  std::unique_ptr<QTemporaryDir> dir_;
  std::unique_ptr<QProcess> server_;
};

}  // namespace quillery::test
