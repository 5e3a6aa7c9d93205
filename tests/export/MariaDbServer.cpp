#include "MariaDbServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

namespace quillery::test {
namespace {

QString programPath(const QString& name) {
  // The server lives in /usr/sbin, which a test's PATH may lack.
  return QStandardPaths::findExecutable(
      name, {"/usr/sbin", "/usr/bin", "/usr/local/sbin", "/usr/local/bin"});
}

}  // namespace

QString MariaDbServer::missingPrograms() {
  QStringList missing;
  for (const QString program : {"mariadbd", "mariadb-install-db", "mariadb"})
    if (programPath(program).isEmpty())
      missing.append(program);
  return missing.isEmpty() ? QString()
                           : "the MariaDB server is not installed (" + missing.join(", ") +
                                 " missing; scripts/install-deps.sh installs it)";
}

QString MariaDbServer::start() {
  // A data folder in memory makes the first start take a second, not several.
  const bool shm = QFileInfo(QStringLiteral("/dev/shm")).isWritable();
  dir_ = std::make_unique<QTemporaryDir>((shm ? QStringLiteral("/dev/shm") : QDir::tempPath()) +
                                         QStringLiteral("/quillery-mariadb-XXXXXX"));
  const QString data = "--datadir=" + dir_->filePath("data");
  const ProgramResult installed =
      runProgram(programPath("mariadb-install-db"),
                 {"--no-defaults", data, "--auth-root-authentication-method=normal",
                  "--skip-test-db", "--user=root"});
  if (installed.exitCode != 0)
    return "mariadb-install-db failed: " + installed.out + installed.err;
  server_ = std::make_unique<QProcess>();
  server_->start(programPath("mariadbd"),
                 {"--no-defaults", data, "--socket=" + dir_->filePath("socket"),
                  "--skip-networking", "--user=root", "--pid-file=" + dir_->filePath("pid"),
                  "--log-error=" + dir_->filePath("error.log"), "--character-set-server=utf8mb4",
                  "--collation-server=utf8mb4_general_ci"});
  QElapsedTimer waited;
  waited.start();
  while (waited.elapsed() < 30000 && server_->state() != QProcess::NotRunning) {
    if (QFileInfo::exists(dir_->filePath("socket")) && execute("SELECT 1").isEmpty())
      return {};
    QThread::msleep(50);
  }
  QFile log(dir_->filePath("error.log"));
  log.open(QIODevice::ReadOnly);
  const QString failure = "the server did not start: " + QString::fromUtf8(log.readAll());
  stop();
  return failure;
}

void MariaDbServer::stop() {
  if (server_ && server_->state() != QProcess::NotRunning) {
    server_->terminate();  // SIGTERM: the server shuts down cleanly
    if (!server_->waitForFinished(30000))
      server_->kill(), server_->waitForFinished(5000);
  }
  server_.reset();
  dir_.reset();
}

ProgramResult MariaDbServer::client(const QStringList& arguments, const QByteArray& input) const {
  return runProgram(
      programPath("mariadb"),
      QStringList{"--no-defaults", "--socket=" + dir_->filePath("socket"), "--user=root"} +
          arguments,
      input);
}

ProgramResult MariaDbServer::load(const QString& scriptPath, const QString& initCommand) const {
  QFile script(scriptPath);
  if (!script.open(QIODevice::ReadOnly))
    return {-1, {}, "cannot read " + scriptPath};
  return client(
      initCommand.isEmpty() ? QStringList() : QStringList{"--init-command=" + initCommand},
      script.readAll());
}

QString MariaDbServer::execute(const QString& sql) const {
  const ProgramResult result = client({"-e", sql});
  return result.exitCode == 0 ? QString() : result.err + ' ';
}

QList<QStringList> MariaDbServer::rows(const QString& database, const QString& sql) const {
  QList<QStringList> out;
  const ProgramResult result =
      client({"--batch", "--raw", "--skip-column-names", database, "-e", sql});
  for (const QString& line : result.out.split('\n', Qt::SkipEmptyParts)) {
    QStringList row;
    for (const QString& column : line.split('\t'))
      row.append(column == "NULL" ? QString()
                                  : QString::fromUtf8(QByteArray::fromHex(column.toLatin1())));
    out.append(row);
  }
  return out;
}

QStringList MariaDbServer::tableRows(const QString& database) const {
  const QStringList tables = {
      "email:id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld,numAttach",
      "tags:id,cat_fld,key_fld,priority_fld,notes_fld", "origemail:id,orig_fld",
      "attachments:id,type_fld,base64,filename_fld,attach_fld"};
  QStringList out;
  for (const QString& table : tables) {
    QStringList columns = table.section(':', 1).split(',');
    for (QString& column : columns)
      column = "HEX(CAST(" + column + " AS CHAR))";
    const QString name = table.section(':', 0, 0);
    for (const QStringList& row : rows(database, "SELECT " + columns.join(',') + " FROM " + name))
      out.append(name + '|' + row.join('|'));
  }
  out.sort();
  return out;
}

}  // namespace quillery::test
