#include "MariaDbServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

namespace quillery::test {
namespace {

const QStringList kPrograms = {"mariadbd", "mariadb-install-db", "mariadb"};

QString programPath(const QString& name) {
  // The server lives in /usr/sbin, which a test's PATH may lack.
  return QStandardPaths::findExecutable(
      name, {"/usr/sbin", "/usr/bin", "/usr/local/sbin", "/usr/local/bin"});
}

}  // namespace

QString MariaDbServer::missingPrograms() {
  QStringList missing;
  for (const QString& program : kPrograms)
    if (programPath(program).isEmpty())
      missing.append(program);
  return missing.isEmpty() ? QString()
                           : "the MariaDB server is not installed (" + missing.join(", ") +
                                 " missing; scripts/install-deps.sh installs it)";
}

QString MariaDbServer::start() {
  // A data folder in memory makes the server's first start take a second, not several.
  const QString base =
      QFileInfo("/dev/shm").isWritable() ? QStringLiteral("/dev/shm") : QDir::tempPath();
  dir_ = std::make_unique<QTemporaryDir>(base + QStringLiteral("/quillery-mariadb-XXXXXX"));
  const QString data = dir_->filePath("data");
  const ProgramResult installed =
      runProgram(programPath("mariadb-install-db"),
                 {"--no-defaults", "--datadir=" + data, "--auth-root-authentication-method=normal",
                  "--skip-test-db", "--user=root"});
  if (installed.exitCode != 0)
    return "mariadb-install-db failed: " + installed.out + installed.err;
  server_ = std::make_unique<QProcess>();
  server_->setProcessChannelMode(QProcess::ForwardedErrorChannel);
  // As Debian's own configuration has it: the server stores text as utf8mb4.
  server_->start(programPath("mariadbd"),
                 {"--no-defaults", "--datadir=" + data, "--socket=" + dir_->filePath("socket"),
                  "--skip-networking", "--user=root", "--pid-file=" + dir_->filePath("pid"),
                  "--log-error=" + dir_->filePath("error.log"), "--character-set-server=utf8mb4",
                  "--collation-server=utf8mb4_general_ci"});
  QElapsedTimer waited;
  waited.start();
  while (waited.elapsed() < 30000) {
    if (server_->state() == QProcess::NotRunning)
      break;
    if (QFileInfo::exists(dir_->filePath("socket")) && execute("SELECT 1").isEmpty())
      return {};
    QThread::msleep(50);
  }
  QFile log(dir_->filePath("error.log"));
  log.open(QIODevice::ReadOnly);
  stop();
  return "the server did not start: " + QString::fromUtf8(log.readAll());
}

void MariaDbServer::stop() {
  if (server_ && server_->state() != QProcess::NotRunning) {
    server_->terminate();  // SIGTERM: the server shuts down cleanly
    if (!server_->waitForFinished(30000)) {
      server_->kill();
      server_->waitForFinished(5000);
    }
  }
  server_.reset();
  dir_.reset();
}

QStringList MariaDbServer::clientArguments() const {
  return {"--no-defaults", "--socket=" + dir_->filePath("socket"), "--user=root"};
}

ProgramResult MariaDbServer::load(const QString& scriptPath, const QString& initCommand) const {
  QStringList arguments = clientArguments();
  if (!initCommand.isEmpty())
    arguments.append("--init-command=" + initCommand);
  QFile script(scriptPath);
  if (!script.open(QIODevice::ReadOnly))
    return {-1, {}, "cannot read " + scriptPath};
  return runProgram(programPath("mariadb"), arguments, script.readAll());
}

QString MariaDbServer::execute(const QString& sql) const {
  const ProgramResult result =
      runProgram(programPath("mariadb"), clientArguments() + QStringList{"-e", sql});
  return result.exitCode == 0 ? QString() : result.err + QLatin1Char(' ');
}

QList<QStringList> MariaDbServer::rows(const QString& database, const QString& sql) const {
  const ProgramResult result =
      runProgram(programPath("mariadb"),
                 clientArguments() +
                     QStringList{"--batch", "--raw", "--skip-column-names", database, "-e", sql});
  QList<QStringList> out;
  for (const QString& line : result.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
    QStringList row;
    for (const QString& column : line.split(QLatin1Char('\t')))
      row.append(column == QLatin1String("NULL")
                     ? QString()
                     : QString::fromUtf8(QByteArray::fromHex(column.toLatin1())));
    out.append(row);
  }
  return out;
}

}  // namespace quillery::test
