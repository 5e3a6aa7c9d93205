#include <gtest/gtest.h>

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QTemporaryDir>

#include "archive/TestFiles.h"
#include "ingest/MailSources.h"
#include "support/FakeDialogs.h"
#include "support/TestEnvironment.h"

namespace quillery::ingest {
namespace {

class MailSourcesTest : public ::testing::Test {
 protected:
  QString home() const { return dir.filePath(QStringLiteral("home")); }
  QString mail() const { return home() + QStringLiteral("/Library/Mail"); }
  QString listFile() const { return dir.filePath(QStringLiteral("archive.tmp")); }

  static void makeFile(const QString& path, const QByteArray& bytes, bool executable = false) {
    ASSERT_TRUE(test::writeFile(path, bytes, executable));
  }

  // Two accounts with nested and plain mailboxes, the local Mailboxes folder, and the
  // folders and files that are not accounts.
  void makeMailTree() const {
    for (const char* folder :
         {"Work@imap.example.com/INBOX.mbox/Messages",
          "Work@imap.example.com/Projects.mbox/Old.mbox/Messages",
          "Home/Sent Messages.mbox/Messages", "Mailboxes/Archive.mbox/Messages", "Mailbox",
          "Bundles", "Signatures2"})
      QDir().mkpath(mail() + '/' + QLatin1String(folder));
    makeFile(mail() + QStringLiteral("/Envelope Index"), "not a folder");
  }

  MailSources sources(const QString& tool = test::toolPath(QStringLiteral("findmail"))) {
    return MailSources(dialogs, home(), tool);
  }

  QTemporaryDir dir;
  test::FakeDialogs dialogs;
};

TEST_F(MailSourcesTest, AccountsAreTheMailFoldersDirectoriesExceptTheMailClientsOwn) {
  // No mail folder: an empty list, without complaint.
  MailSources list = sources();
  list.sourceList = QStringList{QStringLiteral("left over")};
  EXPECT_TRUE(list.listMailAccounts({QStringLiteral("Home")}).isEmpty());
  EXPECT_TRUE(list.sourceList.isEmpty());

  makeMailTree();
  const QList<int> rows =
      list.listMailAccounts({QStringLiteral("Home"), QStringLiteral("Gone@pop.example.com")});
  // Mailbox and Mailboxes, Bundles and Signatures2 are the client's; a name shorter than seven
  // characters is always an account; a plain file never is.
  EXPECT_EQ(QSet<QString>(list.sourceList.cbegin(), list.sourceList.cend()),
            (QSet<QString>{QStringLiteral("Work@imap.example.com"), QStringLiteral("Home")}));
  ASSERT_EQ(rows.size(), 1);
  EXPECT_EQ(list.sourceList.at(rows.first()), "Home");

  // The rows chosen in the table come back in row order, whatever order they were picked in.
  EXPECT_EQ(list.entriesAt({1, 0}), (QStringList{list.sourceList.at(0), list.sourceList.at(1)}));
  EXPECT_TRUE(dialogs.alerts.isEmpty());
}

TEST_F(MailSourcesTest, MailboxesComeFromFindmailWithTheirLineEnds) {
  if (!QFileInfo(test::toolPath(QStringLiteral("findmail"))).isExecutable())
    GTEST_SKIP() << "findmail is not built in " << test::toolsDir().toStdString();
  makeMailTree();
  MailSources list = sources();
  const QString archive = mail() + QStringLiteral("/Mailboxes/Archive.mbox\n");
  const QList<int> rows = list.listMailboxes({archive, QStringLiteral("/gone.mbox\n")}, listFile());

  QStringList sorted = list.sourceList;
  sorted.sort();
  EXPECT_EQ(sorted, (QStringList{mail() + "/Home/Sent Messages.mbox\n", archive,
                                 mail() + "/Work@imap.example.com/INBOX.mbox\n",
                                 mail() + "/Work@imap.example.com/Projects.mbox\n",
                                 mail() + "/Work@imap.example.com/Projects.mbox/Old.mbox\n"}));
  ASSERT_EQ(rows.size(), 1);
  EXPECT_EQ(list.sourceList.at(rows.first()), archive);
  // The list stays for the store run's end (or the application's) to delete.
  EXPECT_TRUE(QFileInfo::exists(listFile()));
  EXPECT_TRUE(dialogs.alerts.isEmpty());
}

TEST_F(MailSourcesTest, ListLinesAreReadInPiecesAndAnOldListIsNotTakenForAMissingOne) {
  // A stand-in for findmail that writes lines the real tool never would: pieces of at most
  // 2,999 bytes, and a line that is not UTF-8 is skipped.
  makeMailTree();
  const QString tool = dir.filePath(QStringLiteral("fake-findmail"));
  makeFile(tool,
           "#!/bin/sh\n"
           "{ printf 'caf\\303\\251.mbox\\n'; printf 'bad \\377 line\\n';"
           "  head -c 3500 /dev/zero | tr '\\0' x; printf '\\n'; printf 'last'; } > \"$1\"\n",
           true);
  MailSources list = sources(tool);
  list.listMailboxes({}, listFile());
  EXPECT_EQ(list.sourceList,
            (QStringList{"café.mbox\n", QString(2999, 'x'), QString(501, 'x') + '\n', "last"}));

  // Without findmail the list left from that run is not read again.
  MailSources missing = sources(dir.filePath(QStringLiteral("no-such-findmail")));
  EXPECT_TRUE(missing.listMailboxes({QStringLiteral("last")}, listFile()).isEmpty());
  EXPECT_TRUE(missing.sourceList.isEmpty());
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts.first().style, platform::AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts.first().title + '|' + dialogs.alerts.first().message,
            "|Couldn't open " + listFile());
}

}  // namespace
}  // namespace quillery::ingest
