// quillery-cli's search, show, tag and delete as a script runs them, on an archive stored from
// generated mail whose every field is known.
#include "CliFixture.h"

namespace quillery::cli {
namespace {

using test::MailFixtures;

class SearchCliTest : public CliFixture {
 protected:
  void SetUp() override { ASSERT_EQ(run({"store", "--mbox", mbox(30)}).exitCode, 0); }
  // Runs quillery-cli on the test's archive.
  CliResult run(QStringList arguments) const {
    arguments.insert(1, "--archive");
    arguments.insert(2, archive());
    return cli(arguments);
  }
  QString archive() const { return homeDir.filePath("mail.db"); }
  // The id of generated message i.
  QString idOf(int i) const {
    return test::rowsOf(archive(), QStringLiteral("SELECT id FROM email WHERE from_fld LIKE "
                                                  "'Sender %1 <%'")
                                       .arg(i))
        .value(0);
  }
};

TEST_F(SearchCliTest, SearchPrintsTheListLinesTheCountsAndTheStatement) {
  const CliResult cheese = run({"search", "--subject", "\"cheese\"", "--sql"});
  ASSERT_EQ(cheese.exitCode, 0) << cheese.err.toStdString();
  EXPECT_EQ(cheese.out,
            "SELECT email.id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' "
            "ELSE mailbox END),numAttach FROM email  WHERE (subj_fld LIKE \"%\"\"cheese\"\"%\") "
            "ORDER BY UPPER(date_fld)\n" +
                idOf(4) +
                "\t2018-01-01 10:04:00\tSender 4 <sender4@example.com>\tArchive Owner "
                "<owner@example.org>\tSay \"cheese\" 4\tmail.mbox\n" +
                idOf(15) +
                "\t2018-01-01 10:15:00\tSender 15 <sender15@example.com>\tArchive Owner "
                "<owner@example.org>\tSay \"cheese\" 15\tmail.mbox\n" +
                idOf(26) +
                "\t2018-01-01 10:26:00\tSender 26 <sender26@example.com>\tArchive Owner "
                "<owner@example.org>\tSay \"cheese\" 26\tmail.mbox\n"
                "30 emails in the database.\n3 emails in this list.\n");

  // Fields, dates and connectors together; the attachment name makes its view.
  const CliResult files =
      run({"search", "--attachment", "file", "--begin", "2018-01-01", "--end", "2018", "--from",
           "sender1", "--before-subject", "AND", "--subject", "run"});
  ASSERT_EQ(files.exitCode, 0);
  // Of the messages with a file from senders 1x, 17's subject is "Grüße 17".
  EXPECT_TRUE(files.out.startsWith(idOf(12) + "\t2018-01-01 10:12:00\t"));
  EXPECT_TRUE(files.out.endsWith("\n1 emails in this list.\n")) << files.out.toStdString();

  // The SQL panel's own WHERE part, and one that is not SQL.
  const CliResult where =
      run({"search", "--where", "WHERE numAttach=1 AND id<10 ORDER BY id DESC"});
  EXPECT_TRUE(where.out.startsWith(idOf(7) + "\t")) << where.out.toStdString();
  EXPECT_TRUE(where.out.endsWith("\n2 emails in this list.\n"));
  const CliResult broken = run({"search", "--where", "WHERE ("});
  EXPECT_EQ(broken.exitCode, 1);
  EXPECT_EQ(broken.err, "SQL Error: incomplete input\n");
}

TEST_F(SearchCliTest, ShowTagAndDeleteWorkOnTheMessagesNamed) {
  const CliResult shown = run({"show", idOf(7)});
  ASSERT_EQ(shown.exitCode, 0) << shown.err.toStdString();
  EXPECT_TRUE(shown.out.startsWith("ID: " + idOf(7) + "\nDATE: 2018-01-01 10:07:00\n"));
  EXPECT_TRUE(shown.out.endsWith("\n\nATTACHMENTS:\n\nfile7.bin\n\n\n")) << shown.out.toStdString();
  const QString saved = homeDir.filePath("out.bin");
  ASSERT_TRUE(test::writeFile(saved, "older"));
  EXPECT_EQ(run({"show", idOf(7), "--attachment", "0", "--output", saved}).exitCode, 0);
  QFile file(saved);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), MailFixtures::attachmentBytes(7));
  EXPECT_TRUE(
      run({"show", idOf(7), "--source"}).out.contains("Message-ID: <gen7@fixtures.example>"));

  const CliResult tagged =
      run({"tag", idOf(1), idOf(2), "--category", "Work", "--priority", "Highest"});
  EXPECT_EQ(tagged.out, "2 emails have been tagged.\n");
  // The search reads the opposite scale: Lowest finds what was tagged Highest.
  const CliResult found = run({"search", "--category", "Work", "--priority", "Lowest"});
  EXPECT_TRUE(found.out.contains("\t2018-01-01 10:01:00*\t")) << found.out.toStdString();
  EXPECT_TRUE(found.out.endsWith("\n2 emails in this list.\n"));

  // Without --yes and without a terminal nothing is deleted.
  const CliResult asked = run({"delete", idOf(1), idOf(7)});
  EXPECT_EQ(asked.exitCode, 1);
  EXPECT_TRUE(asked.err.contains("give --yes")) << asked.err.toStdString();
  EXPECT_EQ(count(archive()), "30");
  EXPECT_EQ(run({"delete", idOf(7), "--attachments-only", "--yes"}).exitCode, 0);
  EXPECT_EQ(count(archive(), "attachments"), "5");
  const CliResult deleted = run({"delete", idOf(1), idOf(2), "--yes"});
  EXPECT_EQ(deleted.out, "28 emails in the database.\n");
  EXPECT_EQ(count(archive(), "tags"), "2");  // tags outlive their messages
}

TEST_F(SearchCliTest, WrongArgumentsAndMissingMessagesChangeNothing) {
  const struct {
    QStringList arguments;
    int exitCode;
    const char* says;
  } rows[] = {
      {{"search", "--priority", "Urgent"}, 2, "--priority wants one of None, Highest"},
      {{"search", "--begin", "2018-13"}, 2, "--begin wants YYYY, YYYY-MM or YYYY-MM-DD"},
      {{"search", "--before-to", "XOR"}, 2, "--before-to wants AND or OR"},
      {{"show"}, 2, "show needs one message id"},
      {{"show", "1", "--attachment", "0"}, 2, "--attachment and --output go together"},
      {{"tag", "--category", "x"}, 2, "tag needs at least one message id"},
      {{"delete", "abc"}, 2, "unknown option 'abc' for delete"},
      {{"show", "9999"}, 1, "no message with id 9999"},
      {{"tag", "1", "9999", "--category", "x"}, 1, "no message with id 9999; nothing was tagged"},
      {{"delete", "9999", "--yes"}, 1, "no message with id 9999; nothing was deleted"},
      {{"show", "1", "--attachment", "0", "--output", "/tmp/x"}, 1, "has no attachment 0"},
  };
  for (const auto& row : rows) {
    const CliResult result = run(row.arguments);
    EXPECT_EQ(result.exitCode, row.exitCode) << row.says;
    EXPECT_TRUE(result.err.contains(QString::fromUtf8(row.says))) << result.err.toStdString();
  }
  EXPECT_EQ(count(archive()) + count(archive(), "tags") + count(archive(), "attachments"), "3006");
}

}  // namespace
}  // namespace quillery::cli
