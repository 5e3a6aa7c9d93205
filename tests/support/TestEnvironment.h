#pragma once

#include <QString>
#include <QStringList>

namespace quillery::test {

// Paths that tests need: the build's executables folder (domail, findmail, quillery-cli)
// and the shared mail corpus, which may be absent.
QString toolsDir();
QString corpusDir();  // empty when ../shared/corpus is not there
QString toolPath(const QString& name);
// The file's bytes; empty when it cannot be read.
QByteArray bytesOf(const QString& path);

// What a program did: its exit code (-1 when it did not start or end normally) and output.
struct ProgramResult {
  int exitCode = -1;
  QString out;
  QString err;
};

// Runs a program with TZ=UTC (and HOME and its configuration in home, when given), feeding
// it input and closing its input after it, and waits up to two minutes.
ProgramResult runProgram(const QString& program, const QStringList& arguments,
                         const QByteArray& input = {}, const QString& home = {});
// quillery-cli of the build, at home in home.
ProgramResult runCli(const QStringList& arguments, const QString& home = {});

}  // namespace quillery::test
