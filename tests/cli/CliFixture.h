#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "archive/TestFiles.h"
#include "support/MailFixtures.h"
#include "support/TestEnvironment.h"

namespace quillery::cli {

using CliResult = test::ProgramResult;

// quillery-cli run as a separate process with a home folder and settings of the test's own.
class CliFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(QFile::exists(test::toolPath(QStringLiteral("quillery-cli"))));
  }

  QString home() const { return homeDir.path(); }

  CliResult cli(const QStringList& arguments,
                const QString& program = test::toolPath(QStringLiteral("quillery-cli"))) const {
    return test::runProgram(program, arguments, {}, home());
  }

  // An mbox file of generated messages (see MailFixtures) in the home folder.
  QString mbox(int messages) const {
    const QString path = homeDir.filePath(QStringLiteral("mail.mbox"));
    EXPECT_TRUE(test::MailFixtures::writeMbox(path, messages));
    return path;
  }
  QString count(const QString& file, const QString& table = QStringLiteral("email")) const {
    return test::rowsOf(file, "SELECT count(*) FROM " + table).value(0);
  }

  QTemporaryDir homeDir;
};

}  // namespace quillery::cli
