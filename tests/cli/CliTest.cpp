// quillery-cli as a script runs it: a separate process with its own HOME, real mail, a real
// archive file, and the exit status and the two output streams checked.
#include <QDir>

#include "CliFixture.h"

namespace quillery::cli {
namespace {

using test::MailFixtures;
using test::readFile;

using CliTest = CliFixture;

TEST_F(CliTest, StoringIntoTheDefaultOrSavedArchivePrintsTheSummaryAndListingCountsIt) {
  const QString desktopArchive = home() + QStringLiteral("/Desktop/myemaildb");
  // No Desktop folder: the archive cannot be made there, and the alert says why.
  const CliResult failed = cli({"store", "--mbox", mbox(20)});
  EXPECT_EQ(failed.exitCode, 1);
  EXPECT_TRUE(failed.err.startsWith("SQL Error: " + desktopArchive + ' '))
      << failed.err.toStdString();
  EXPECT_EQ(failed.out, QString());

  ASSERT_TRUE(QDir(home()).mkpath(QStringLiteral("Desktop")));
  const CliResult stored = cli({"store", "--mbox", mbox(20)});
  EXPECT_EQ(stored.exitCode, 0) << stored.err.toStdString();
  EXPECT_TRUE(stored.out.startsWith(QStringLiteral(
      "Parsed: 20\nProcessed: 20\nStored: 20\nDuplicates replaced: 0\nlast file parsed: ")))
      << stored.out.toStdString();
  EXPECT_TRUE(stored.out.contains(MailFixtures::subject(19)));
  EXPECT_EQ(readFile(desktopArchive + QStringLiteral(".storelog")), stored.out);
  EXPECT_EQ(stored.err, QString());  // no terminal, no alert: nothing on standard error

  const CliResult again = cli({"store", "--mbox", mbox(20), "--no-source"});
  EXPECT_EQ(again.exitCode, 0);
  EXPECT_TRUE(again.out.contains(QStringLiteral("\nStored: 20\nDuplicates replaced: 20\n")));
  const CliResult listed = cli({"list"});
  EXPECT_EQ(listed.exitCode, 0) << listed.err.toStdString();
  EXPECT_TRUE(listed.out.startsWith(
      QStringLiteral("20 emails in the database.\n20 emails in this list.\nListed in ")))
      << listed.out.toStdString();

  // The window's saved archive path wins over the default.
  const QString saved = homeDir.filePath(QStringLiteral("saved.db"));
  ASSERT_TRUE(QDir(home()).mkpath(QStringLiteral(".config/Quillery")));
  ASSERT_TRUE(test::writeFile(home() + QStringLiteral("/.config/Quillery/Quillery.conf"),
                              "[General]\ndbPath=" + saved.toUtf8() + "\n"));
  EXPECT_EQ(cli({"store", "--mbox", mbox(3)}).exitCode, 0);
  EXPECT_TRUE(QFile::exists(saved));
}

TEST_F(CliTest, AnArchiveThatCannotBeOpenedOrAMissingToolFailsWithoutTouchingAnything) {
  const QString text = homeDir.filePath(QStringLiteral("notes.txt"));
  const QByteArray notes = "These are my notes, not an archive of mail at all.\n";
  ASSERT_TRUE(test::writeFile(text, notes));
  for (const QStringList& arguments :
       {QStringList{"store", "--archive", text, "--mbox", mbox(1)}, {"list", "--archive", text}}) {
    const CliResult result = cli(arguments);
    EXPECT_EQ(result.exitCode, 1) << arguments.first().toStdString();
    EXPECT_TRUE(result.err.contains(QStringLiteral("not a valid database file.")))
        << result.err.toStdString();
    EXPECT_EQ(result.out, QString());
  }
  EXPECT_EQ(readFile(text), QString::fromUtf8(notes));

  // Without the parser tool beside it nothing is started.
  const QString lonely = homeDir.filePath(QStringLiteral("quillery-cli"));
  ASSERT_TRUE(QFile::copy(test::toolPath(QStringLiteral("quillery-cli")), lonely));
  const QString archive = homeDir.filePath(QStringLiteral("never.db"));
  const CliResult result = cli({"store", "--archive", archive, "--mbox", mbox(1)}, lonely);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_EQ(result.err, QStringLiteral("quillery-cli: the parser tool is missing: ") +
                            homeDir.filePath(QStringLiteral("domail")) + QLatin1Char('\n'));
  EXPECT_FALSE(QFile::exists(archive));
}

TEST_F(CliTest, WrongCommandLinesExitTwoAndSayWhatIsWrongAndHelpDocumentsEveryOption) {
  struct Row {
    QStringList arguments;
    const char* says;
  };
  const Row rows[] = {
      {{}, "no command given"},
      {{"fetch"}, "unknown command 'fetch'"},
      {{"store"}, "store needs --mbox, --accounts or --mailboxes"},
      {{"store", "--mbox"}, "--mbox needs at least one value"},
      {{"store", "--mbox", "a", "--accounts", "b"}, "give only one of"},
      {{"store", "--accounts", "a", "--begin", "2021-02-30"},
       "--begin wants a day as YYYY-MM-DD, not '2021-02-30'"},
      {{"store", "--archive"}, "--archive needs a value"},
      {{"list", "--trash"}, "unknown option '--trash' for list"},
      {{"merge", "--archive", "a.db"}, "merge needs the FILE to merge"},
      {{"backup", "--yes"}, "unknown option '--yes' for backup"},
      {{"merge", "a.db", "b.db"}, "unknown argument 'b.db' for merge"},
      {{"compact", "--to", "x"}, "unknown option '--to' for compact"},
  };
  for (const Row& row : rows) {
    const CliResult result = cli(row.arguments);
    EXPECT_EQ(result.exitCode, 2) << row.says;
    EXPECT_TRUE(result.err.contains(QString::fromUtf8(row.says))) << result.err.toStdString();
    EXPECT_TRUE(result.err.contains(QStringLiteral("Try 'quillery-cli --help'.")));
  }
  const CliResult help = cli({"--help"});
  EXPECT_EQ(help.exitCode, 0);
  for (const char* word : {"store",
                           "list",
                           "search",
                           "show",
                           "tag",
                           "delete",
                           "backup",
                           "restore",
                           "compact",
                           "convert",
                           "merge",
                           "export",
                           "--archive",
                           "--mbox",
                           "--accounts",
                           "--mailboxes",
                           "--begin",
                           "--end",
                           "--no-attachments",
                           "--no-html",
                           "--trash",
                           "--all-mailboxes",
                           "--no-source",
                           "--progress-lines",
                           "--attachment",
                           "--before-body",
                           "--where",
                           "--sql",
                           "--attachments-only",
                           "--yes",
                           "--source",
                           "--to",
                           "--from",
                           "Exit status"})
    EXPECT_TRUE(help.out.contains(QString::fromUtf8(word))) << word;
}

TEST_F(CliTest, ProgressLinesCountEveryThousandMessagesWithTheirTime) {
  const QString archive = homeDir.filePath(QStringLiteral("lines.db"));
  const CliResult result =
      cli({"store", "--archive", archive, "--mbox", mbox(2000), "--progress-lines"});
  EXPECT_EQ(result.exitCode, 0) << result.err.toStdString();
  QStringList storing;
  for (const QString& line : result.err.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
    if (!line.startsWith(QLatin1String("Retrieving")))
      storing.append(line.section(QLatin1Char(' '), -2, -2));
  EXPECT_EQ(storing, (QStringList{QStringLiteral("1000"), QStringLiteral("2000")}))
      << result.err.toStdString();
}

// A folder reaches the parser tool as it was given: a Maildir, with a Maildir++ subfolder and
// a trailing "/", stores like an mbox file; an account is found in the mail folder under HOME.
TEST_F(CliTest, AMaildirFolderAndAnAppleMailAccountUnderHomeAreStored) {
  const QString maildir = home() + QStringLiteral("/Maildir");
  for (const char* folder : {"cur", "new", ".Sent/cur", ".Sent/new"})
    ASSERT_TRUE(QDir(maildir).mkpath(QString::fromLatin1(folder)));
  for (int i = 0; i < 4; ++i) {
    const QString box = i < 3 ? QStringLiteral("/cur/") : QStringLiteral("/.Sent/cur/");
    ASSERT_TRUE(test::writeFile(maildir + box + QStringLiteral("170000000%1.M1P1.host:2,S").arg(i),
                                test::MailFixtures::message(i)));
  }
  const CliResult result =
      cli({"store", "--archive", homeDir.filePath("maildir.db"), "--mbox", maildir + '/'});
  EXPECT_TRUE(result.out.startsWith(QStringLiteral("Parsed: 4\nProcessed: 4\nStored: 4\n")))
      << result.out.toStdString() << result.err.toStdString();

  const QString corpus = test::corpusDir();
  if (corpus.isEmpty())
    GTEST_SKIP() << "the shared mail corpus (../shared/corpus) is not here";
  ASSERT_TRUE(QDir(home()).mkpath(QStringLiteral("Library")));
  ASSERT_TRUE(
      QFile::link(corpus + QStringLiteral("/emlx/Mail"), home() + QStringLiteral("/Library/Mail")));
  const CliResult account = cli({"store", "--archive", homeDir.filePath("apple.db"), "--accounts",
                                 "POP-sample@pop.example.com"});
  EXPECT_TRUE(account.out.startsWith(QStringLiteral("Parsed: 3\nProcessed: 3\nStored: 3\n")))
      << account.out.toStdString() << account.err.toStdString();
}

}  // namespace
}  // namespace quillery::cli
