#include "support/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>

namespace quillery::test {

QString toolsDir() {
  return QStringLiteral(QUILLERY_TOOLS_DIR);
}

QString toolPath(const QString& name) {
  return toolsDir() + QLatin1Char('/') + name;
}

QByteArray bytesOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString corpusDir() {
  const QString fromEnv = qEnvironmentVariable("QUILLERY_CORPUS");
  const QString path =
      fromEnv.isEmpty() ? QStringLiteral(QUILLERY_SOURCE_DIR "/../shared/corpus") : fromEnv;
  return QFileInfo(path).isDir() ? QDir(path).canonicalPath() : QString();
}

ProgramResult runProgram(const QString& program, const QStringList& arguments,
                         const QByteArray& input, const QString& home) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
  if (!home.isEmpty()) {
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
  }
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  process.write(input);
  process.closeWriteChannel();
  if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
    return {-1, {}, process.errorString()};
  return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

ProgramResult runCli(const QStringList& arguments, const QString& home) {
  return runProgram(toolPath(QStringLiteral("quillery-cli")), arguments, {}, home);
}

}  // namespace quillery::test
