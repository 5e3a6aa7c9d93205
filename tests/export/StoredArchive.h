#pragma once

#include <QString>
#include <QStringList>

namespace quillery::test {

// The result of running a program: its exit code (-1 when it did not end normally or did
// not start) and its two output streams.
struct ProgramResult {
  int exitCode = -1;
  QString out;
  QString err;
};

// Runs a program with the test's environment (TZ=UTC; HOME and its configuration in home
// when one is given), feeding it input, and waits up to two minutes.
ProgramResult runProgram(const QString& program, const QStringList& arguments,
                         const QByteArray& input = {}, const QString& home = {});
// quillery-cli of the build, with HOME (and its configuration) in home.
ProgramResult runCli(const QStringList& arguments, const QString& home);

// An archive stored the way a user stores mail: the real quillery-cli and domail on the
// shared corpus (its mbox files, its single messages gathered into one mbox, its Apple Mail
// accounts) and on generated mail (quotes, backslashes, non-ASCII in 8-bit bodies and in
// encoded headers, a very long subject, attachments in base64 and as plain text, a "From "
// line in a body), part of it stored without raw sources, and some messages tagged
// afterwards. It is made once per test program; each test copies it.
class StoredArchive {
 public:
  // Copies the archive to path; "" or why it could not be made (the corpus missing among
  // the reasons, which a test turns into a skip).
  static QString copyTo(const QString& path);
  // The subjects of the generated messages whose bodies hold a "From " line.
  static QString fromLineSubject();
};

}  // namespace quillery::test
