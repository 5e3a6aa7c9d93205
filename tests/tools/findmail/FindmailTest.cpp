// findmail run as the application runs it: a separate process with HOME pointing at a copy of
// a Mac's mail folder, writing the list of mailboxes that the store panel offers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <filesystem>

#include "support/TestEnvironment.h"

namespace quillery::test {
namespace {

namespace fs = std::filesystem;

constexpr char kUuid[] = "8C1D2E3F-1111-4222-8333-444455556666";

class FindmailTest : public ::testing::Test {
 protected:
  struct Run {
    int exitCode = -1;
    QString errors;
    std::vector<std::string> lines;
    bool endsWithLineEnd = true;
  };

  std::string home() const { return home_.path().toStdString(); }
  std::string mail() const { return home() + "/Library/Mail"; }
  std::string outFile() const { return out_.path().toStdString() + "/archive.sqlite.tmp"; }

  void folder(const std::string& path) const { fs::create_directories(mail() + "/" + path); }
  void file(const std::string& path) const {
    folder(fs::path(path).parent_path().string());
    QFile f(QString::fromStdString(mail() + "/" + path));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
  }

  Run run(const QStringList& arguments, const std::string& output) const {
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("HOME"), QString::fromStdString(home()));
    process.setProcessEnvironment(env);
    process.start(toolPath(QStringLiteral("findmail")),
                  QStringList{QString::fromStdString(output)} + arguments);
    Run result;
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
      ADD_FAILURE() << "findmail did not end normally";
      return result;
    }
    result.exitCode = process.exitCode();
    result.errors = QString::fromLocal8Bit(process.readAllStandardError());
    QFile list(QString::fromStdString(output));
    if (list.open(QIODevice::ReadOnly)) {
      const QByteArray bytes = list.readAll();
      result.endsWithLineEnd = bytes.isEmpty() || bytes.endsWith('\n');
      for (const QByteArray& line : bytes.split('\n')) {
        if (!line.isEmpty()) {
          result.lines.push_back(line.toStdString());
        }
      }
    }
    return result;
  }
  Run run(const QStringList& arguments) const { return run(arguments, outFile()); }

 private:
  QTemporaryDir home_;
  QTemporaryDir out_;
};

TEST_F(FindmailTest, ListsEveryMailboxOfTheOldAndCurrentLayouts) {
  file("POP-old@example.com/INBOX.mbox/mbox");
  folder("POP-old@example.com/Sent Messages.mbox/Messages");
  file("POP-old@example.com/Info.plist");
  folder("IMAP-x@example.com/INBOX.imapmbox/Messages");
  folder("IMAP-x@example.com/INBOX.imapmbox/Lists.imapmbox/Messages");
  const std::string account = std::string("V10/") + kUuid;
  file(account + "/INBOX.mbox/0A1B2C3D/Data/3/Messages/1.emlx");
  folder(account + "/INBOX.mbox/Attachments");
  folder(account + "/[Gmail].mbox/Sent Mail.mbox");
  folder(account + "/.Hidden.mbox");
  folder("V10/Mailboxes/Projects.mbox/2019.mbox");
  folder("V10/MailData/Envelope.mbox");
  folder("V10/Signatures/Signatures.mbox");
  folder("V9/Old/INBOX.mbox");
  folder("Mailboxes/Stale.mbox");  // what the newest version folder replaced

  const Run result = run({"POP-old@example.com", "IMAP-x@example.com", "V10", "Mailboxes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.endsWithLineEnd);
  const std::string m = mail() + "/";
  const std::string a = m + account + "/";
  EXPECT_EQ(result.lines,
            (std::vector<std::string>{
                m + "POP-old@example.com/INBOX.mbox", m + "POP-old@example.com/Sent Messages.mbox",
                m + "IMAP-x@example.com/INBOX.imapmbox",
                m + "IMAP-x@example.com/INBOX.imapmbox/Lists.imapmbox", a + "INBOX.mbox",
                a + "[Gmail].mbox", a + "[Gmail].mbox/Sent Mail.mbox",
                m + "V10/Mailboxes/Projects.mbox", m + "V10/Mailboxes/Projects.mbox/2019.mbox"}));
}

TEST_F(FindmailTest, OddNamesAndUnreadableFoldersNeverStopTheList) {
  const std::vector<std::string> odd = {"With blanks  twice.mbox", "It's \"done\".mbox",
                                        "Grüße 📬.mbox", "back\\slash.mbox", "-dash.mbox"};
  for (const std::string& name : odd) {
    folder("Mailboxes/" + name);
  }
  folder("Mailboxes/line\nbreak.mbox");  // cannot be one line: left out
  folder("Mailboxes/Locked/Inside.mbox");
  folder("Closed@example.com/INBOX.mbox");
  const bool root = ::geteuid() == 0;  // chmod does not stop root from reading
  if (!root) {
    fs::permissions(mail() + "/Mailboxes/Locked", fs::perms::none);
    fs::permissions(mail() + "/Closed@example.com", fs::perms::none);
  }
  const Run result = run({"Closed@example.com", "Missing@example.com", "Mailboxes"});
  if (!root) {
    fs::permissions(mail() + "/Mailboxes/Locked", fs::perms::owner_all);
    fs::permissions(mail() + "/Closed@example.com", fs::perms::owner_all);
  }
  EXPECT_EQ(result.exitCode, 0);
  // The unreadable account gives nothing; the local mailboxes come in name order.
  std::vector<std::string> local;
  for (const std::string& name : odd) {
    local.push_back(mail() + "/Mailboxes/" + name);
  }
  if (root) {
    local.push_back(mail() + "/Mailboxes/Locked/Inside.mbox");
  }
  std::sort(local.begin(), local.end());
  std::vector<std::string> expected;
  if (root) {
    expected.push_back(mail() + "/Closed@example.com/INBOX.mbox");
  }
  expected.insert(expected.end(), local.begin(), local.end());
  EXPECT_EQ(result.lines, expected);
}

TEST_F(FindmailTest, TroubleEndsWithStatusZeroAndSaysWhy) {
  // No mail folder at all: an empty list.
  Run result = run({"Someone@example.com", "Mailboxes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(QFile::exists(QString::fromStdString(outFile())));
  EXPECT_TRUE(result.lines.empty());

  // An output file that cannot be written.
  folder("Mailboxes/Box.mbox");
  result = run({"Mailboxes"}, home() + "/no such folder/list.tmp");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_TRUE(result.errors.contains(QStringLiteral("cannot write")))
      << result.errors.toStdString();

  QProcess bare;
  bare.start(toolPath(QStringLiteral("findmail")), {});
  ASSERT_TRUE(bare.waitForFinished(60000));
  EXPECT_EQ(bare.exitCode(), 0);
}

}  // namespace
}  // namespace quillery::test
