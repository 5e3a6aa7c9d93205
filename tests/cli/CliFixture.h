#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "support/MailFixtures.h"
#include "support/TestEnvironment.h"

namespace quillery::cli {

// What a run of a program printed and how it ended (-1 when it crashed or hung).
struct CliResult {
  int exitCode = -1;
  QString out;
  QString err;
};

// quillery-cli run as a separate process with a home folder and settings of the test's own.
class CliFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(QFile::exists(test::toolPath(QStringLiteral("quillery-cli"))));
  }

  QString home() const { return homeDir.path(); }

  CliResult cli(const QStringList& arguments,
                const QString& program = test::toolPath(QStringLiteral("quillery-cli"))) const {
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), home());
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home() + QStringLiteral("/.config"));
    environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.closeWriteChannel();
    if (!process.waitForFinished(120000))
      return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
  }

  QString mbox(int messages) const {
    const QString path = homeDir.filePath(QStringLiteral("mail.mbox"));
    EXPECT_TRUE(test::MailFixtures::writeMbox(path, messages));
    return path;
  }

  QTemporaryDir homeDir;
};

}  // namespace quillery::cli
