// quillery-cli export as a script runs it, on an archive stored from real mail, and on a
// small file system that fills up part way.
#include <QDir>
#include <QFile>

#include "ExportFixture.h"
#include "StoredArchive.h"
#include "support/TestEnvironment.h"

namespace quillery::exporting {
namespace {

class ExportCommandTest : public ExportFixture {
 protected:
  void SetUp() override {
    const QString failure = test::StoredArchive::copyTo(dbPath);
    if (!failure.isEmpty())
      GTEST_SKIP() << failure.toStdString();
  }
  test::ProgramResult cli(const QStringList& arguments) const {
    return test::runCli(QStringList{"export", "--archive", dbPath} + arguments, dir.path());
  }
};

TEST_F(ExportCommandTest, EachFormatIsWrittenForTheMessagesAndTheOrderTheOptionsGive) {
  // The completion statements are the exporters' own, whose texts the format tests pin.
  for (const QString format : {"mbox", "sql", "archive", "tab", "text", "source", "list"}) {
    const QString path = outputPath("out." + format);
    const test::ProgramResult result =
        cli({"--format", format, "--output", path, "--where", "WHERE numAttach > 0", "--sort",
             "date", "--descending", "--first-id", "500"});
    EXPECT_EQ(result.exitCode, 0) << format.toStdString() << result.err.toStdString();
    EXPECT_EQ(result.err, QString());
    EXPECT_TRUE(result.out.contains(" " + path + ".\n")) << result.out.toStdString();
  }
  // The list lines show the messages picked, newest first; the script numbers them so.
  QStringList dates;
  for (const QString& line : test::readFile(outputPath("out.list")).split('\n', Qt::SkipEmptyParts))
    dates.append(line.section('\t', 1, 1).remove('*'));
  QStringList newestFirst = dates;
  std::sort(newestFirst.begin(), newestFirst.end(), std::greater<>());
  EXPECT_EQ(dates, newestFirst);
  EXPECT_EQ(QString::number(dates.size()),
            test::rowsOf(dbPath, "SELECT count(*) FROM email WHERE numAttach > 0").value(0));
  EXPECT_TRUE(test::readFile(outputPath("out.sql")).contains("\nINSERT INTO email VALUES(500,'"));

  const struct {
    QStringList arguments;
    int exitCode;
    const char* says;
  } wrong[] = {
      {{"--format", "zip", "--output", "x"}, 2, "--format wants one of mbox|sql|archive|"},
      {{"--format", "mbox"}, 2, "export needs --format and --output"},
      {{"--format", "sql", "--output", "x", "--first-id", "ten"}, 2, "--first-id wants a whole"},
      {{"--format", "list", "--output", "x", "--sort", "size"}, 2, "--sort wants one of id,"},
      {{"--format", "list", "--output", "x", "--where", "WHERE nonsense"},
       1,
       "SQL Error: no such column: nonsense"},
      {{"--format", "source", "--output", outputPath("missing/x")}, 1, "Couldn't open "},
      {{"--format", "text", "--output", outputPath("missing/x")}, 1, "Couldn't open "},
  };
  for (const auto& row : wrong) {
    const test::ProgramResult result = cli(row.arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.says;
    EXPECT_TRUE(result.err.contains(QString::fromUtf8(row.says))) << result.err.toStdString();
  }
}

TEST_F(ExportCommandTest, AFullFileSystemKeepsWholeMessagesAndLeavesTheNewArchiveSound) {
  // A 256 KB file system of its own, mounted in a mount namespace that ends with the shell.
  const QString mountPoint = outputPath("small");
  QDir().mkpath(mountPoint);
  const QString script = QStringLiteral(
      "mount -t tmpfs -o size=256k tmpfs \"$1\" || exit 99\n"
      "\"$2\" export --archive \"$3\" --format mbox --output \"$1/out.mbox\"\n"
      "echo \"mbox exit $?\"; cp \"$1/out.mbox\" \"$4\"; rm \"$1/out.mbox\"\n"
      "\"$2\" export --archive \"$3\" --format archive --output \"$1/new.db\"\n"
      "echo \"archive exit $?\"; ls \"$1\"\n"
      "sqlite3 \"$1/new.db\" 'PRAGMA integrity_check; SELECT count(*) FROM email'\n");
  const QString copy = outputPath("copied.mbox");
  const QByteArray digest = archiveDigest();
  const test::ProgramResult result = test::runProgram(
      "unshare",
      {"-m", "sh", "-c", script, "sh", mountPoint, test::toolPath("quillery-cli"), dbPath, copy});
  if (result.exitCode == 99 || result.err.contains("unshare failed"))
    GTEST_SKIP() << "no small file system can be mounted here: " << result.err.toStdString();
  EXPECT_EQ(result.out, "mbox exit 1\narchive exit 1\nnew.db\nok\n0\n");
  EXPECT_EQ(result.err, "Couldn't write " + mountPoint +
                            "/out.mbox: No space left on device. The file ends with the last "
                            "message written whole.\nSQL error: database or disk is full\n");
  EXPECT_EQ(archiveDigest(), digest);

  // What stayed of the mbox file is the start of the whole export, up to a message's end.
  ASSERT_EQ(cli({"--format", "mbox", "--output", outputPath("whole.mbox")}).exitCode, 0);
  const QByteArray whole = bytesOf(outputPath("whole.mbox"));
  const QByteArray kept = bytesOf(copy);
  EXPECT_GT(kept.size(), 10000);
  EXPECT_TRUE(whole.startsWith(kept));
  EXPECT_TRUE(whole.mid(kept.size()).startsWith("From ")) << whole.mid(kept.size(), 40).data();
}

}  // namespace
}  // namespace quillery::exporting
