// findmail run as the application runs it: a separate process with HOME pointing at a copy of
// a Mac's mail folder, writing the list of mailboxes that the store panel offers.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QFile>
#include <QTemporaryDir>
#include <filesystem>
#include <fstream>

#include "support/TestEnvironment.h"

namespace quillery::test {
namespace {

namespace fs = std::filesystem;

constexpr char kUuid[] = "8C1D2E3F-1111-4222-8333-444455556666";

class FindmailTest : public ::testing::Test {
 protected:
  struct Run {
    int exitCode = -1;
    std::string errors;
    std::string list;  // the output file, or "(none)" when there is none
  };

  std::string home() const { return home_.path().toStdString(); }
  std::string mail() const { return home() + "/Library/Mail"; }
  std::string outFile() const { return out_.path().toStdString() + "/archive.sqlite.tmp"; }
  void folder(const std::string& path) const { fs::create_directories(mail() + "/" + path); }

  Run run(const QStringList& arguments, const std::string& output = {}) const {
    const std::string list = output.empty() ? outFile() : output;
    const ProgramResult result =
        runProgram(toolPath(QStringLiteral("findmail")),
                   QStringList{QString::fromStdString(list)} + arguments, {}, home_.path());
    QFile file(QString::fromStdString(list));
    return {result.exitCode, result.err.toStdString(),
            file.open(QIODevice::ReadOnly) ? file.readAll().toStdString() : "(none)"};
  }

 private:
  QTemporaryDir home_;
  QTemporaryDir out_;
};

// The lines findmail writes for these paths under the mail folder.
std::string lines(const std::string& mail, const std::vector<std::string>& paths) {
  std::string out;
  for (const std::string& path : paths) {
    out += mail + "/" + path + "\n";
  }
  return out;
}

TEST_F(FindmailTest, ListsEveryMailboxOfTheOldAndCurrentLayouts) {
  const std::string account = std::string("V10/") + kUuid;
  // The last is what the newest version folder replaced.
  for (const char* path :
       {"POP-old@example.com/INBOX.mbox", "POP-old@example.com/Sent Messages.mbox/Messages",
        "IMAP-x@example.com/INBOX.imapmbox/Lists.imapmbox/Messages",
        "IMAP-x@example.com/INBOX.imapmbox/Messages", "V10/Mailboxes/Projects.mbox/2019.mbox",
        "V10/MailData/Envelope.mbox", "V10/Signatures/Signatures.mbox", "V9/Old/INBOX.mbox",
        "Mailboxes/Stale.mbox"}) {
    folder(path);
  }
  for (const char* box : {"/INBOX.mbox/0A1B2C3D/Data/3/Messages", "/INBOX.mbox/Attachments",
                          "/[Gmail].mbox/Sent Mail.mbox", "/.Hidden.mbox"}) {
    folder(account + box);
  }
  std::ofstream(mail() + "/POP-old@example.com/INBOX.mbox/mbox");
  std::ofstream(mail() + "/POP-old@example.com/Info.plist");
  std::ofstream(mail() + "/" + account + "/INBOX.mbox/0A1B2C3D/Data/3/Messages/1.emlx");

  const Run result = run({"POP-old@example.com", "IMAP-x@example.com", "V10", "Mailboxes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(
      result.list,
      lines(mail(), {"POP-old@example.com/INBOX.mbox", "POP-old@example.com/Sent Messages.mbox",
                     "IMAP-x@example.com/INBOX.imapmbox",
                     "IMAP-x@example.com/INBOX.imapmbox/Lists.imapmbox", account + "/INBOX.mbox",
                     account + "/[Gmail].mbox", account + "/[Gmail].mbox/Sent Mail.mbox",
                     "V10/Mailboxes/Projects.mbox", "V10/Mailboxes/Projects.mbox/2019.mbox"}));
}

TEST_F(FindmailTest, OddNamesAndUnreadableFoldersNeverStopTheList) {
  // In name order, as the list gives them.
  const std::vector<std::string> odd = {
      "Mailboxes/-dash.mbox", "Mailboxes/Grüße 📬.mbox", "Mailboxes/It's \"done\".mbox",
      "Mailboxes/With blanks  twice.mbox", "Mailboxes/back\\slash.mbox"};
  for (const std::string& name : odd) {
    folder(name);
  }
  folder("Mailboxes/line\nbreak.mbox");  // cannot be one line: left out
  folder("Mailboxes/Locked/Inside.mbox");
  folder("Closed@example.com/INBOX.mbox");
  const bool root = ::geteuid() == 0;  // chmod does not stop root from reading
  for (const char* locked : {"/Mailboxes/Locked", "/Closed@example.com"}) {
    fs::permissions(mail() + locked, root ? fs::perms::owner_all : fs::perms::none);
  }
  const Run result = run({"Closed@example.com", "Missing@example.com", "Mailboxes"});
  for (const char* locked : {"/Mailboxes/Locked", "/Closed@example.com"}) {
    fs::permissions(mail() + locked, fs::perms::owner_all);
  }
  EXPECT_EQ(result.exitCode, 0);
  // The unreadable account and folder give nothing; the rest comes whole.
  EXPECT_EQ(result.list,
            root ? lines(mail(), {"Closed@example.com/INBOX.mbox", odd[0], odd[1], odd[2],
                                  "Mailboxes/Locked/Inside.mbox", odd[3], odd[4]})
                 : lines(mail(), odd));
}

TEST_F(FindmailTest, TroubleEndsWithStatusZeroAndSaysWhy) {
  // No mail folder at all: an empty list.
  Run result = run({"Someone@example.com", "Mailboxes"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.list, "");

  // An output file that cannot be written.
  folder("Mailboxes/Box.mbox");
  result = run({"Mailboxes"}, home() + "/no such folder/list.tmp");
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_NE(result.errors.find("cannot write"), std::string::npos) << result.errors;
  EXPECT_EQ(result.list, "(none)");

  EXPECT_EQ(runProgram(toolPath(QStringLiteral("findmail")), {}).exitCode, 0);
}

}  // namespace
}  // namespace quillery::test
