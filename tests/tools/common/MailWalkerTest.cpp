// The walks over Apple Mail trees and chosen files that the parser tool runs, on trees
// written here in the old and the current layouts.
#include <gtest/gtest.h>
#include <unistd.h>

#include <QTemporaryDir>
#include <filesystem>

#include "SourceFixtures.h"
#include "common/MailWalker.h"

namespace quillery::test {
namespace {

namespace fs = std::filesystem;
using List = std::vector<std::string>;

constexpr char kUuid[] = "1F2E3D4C-0000-4000-8000-00000000A001";

class MailWalkerTest : public ::testing::Test {
 protected:
  std::string root() const { return dir_.path().toStdString(); }
  void emlx(const std::string& path, int i) const {
    writeFile(root() + "/" + path, test::emlx(numberedMessage(i)));
  }
  void mbox(const std::string& path, std::initializer_list<int> numbers) const {
    std::string file;
    for (const int i : numbers) {
      file += "From s@example.com Mon Jan  1 10:00:00 2018\n" + numberedMessage(i) + "\n";
    }
    writeFile(root() + "/" + path, file);
  }

 private:
  QTemporaryDir dir_;
};

// The current layout: version folder, UUID account, hashed Data folders, local Mailboxes.
TEST_F(MailWalkerTest, AccountWalkReadsTheChosenBoxesAndFollowsLinksOnce) {
  const std::string a = kUuid;
  emlx("Library/Mail/V10/" + a + "/INBOX.mbox/AB12/Data/1/Messages/10.emlx", 10);
  emlx("Library/Mail/V10/" + a + "/INBOX.mbox/AB12/Data/Messages/11.emlx", 11);
  for (const char* box : {"INBOX.mbox/Receipts", "[Gmail].mbox/Sent Mail", "[Gmail].mbox/All Mail",
                          "Junk", "Trash.mbox/Old", ".Hidden"}) {
    emlx("Library/Mail/V10/" + a + "/" + box + ".mbox/Messages/1.emlx", 1);
  }
  for (const char* box :
       {"Mailboxes/Archive", "Mailboxes/Sent", "MailData/Hidden", "Signatures/Sig"}) {
    emlx(std::string("Library/Mail/V10/") + box + ".mbox/Messages/1.emlx", 1);
  }
  // A mailbox moved elsewhere and linked back is read; a link back up the tree is no loop.
  const std::string account = root() + "/Library/Mail/V10/" + a;
  emlx("Elsewhere/Moved.mbox/Messages/1.emlx", 1);
  fs::create_directory_symlink(root() + "/Elsewhere/Moved.mbox", account + "/Moved.mbox");
  fs::create_directory_symlink(account, account + "/INBOX.mbox/Loop.mbox");
  for (const bool all : {false, true}) {
    Collected got;
    int searching = 0;
    // "V10" and "Mailboxes" both stand for V10/Mailboxes: its messages come once.
    ASSERT_TRUE(tools::walkAccounts(root() + "/Library/Mail", {"V10", "Mailboxes\n"}, {all, all},
                                    got.sink(), got.invalidSink(), [&] { ++searching; }));
    EXPECT_EQ(got.mailboxes(),
              (all ? List{a + "/INBOX", a + "/INBOX", a + "/INBOX/Receipts", a + "/Junk",
                          a + "/Moved", a + "/Trash/Old", a + "/[Gmail]/All Mail",
                          a + "/[Gmail]/Sent Mail", "Mailboxes/Archive", "Mailboxes/Sent"}
                   : List{a + "/INBOX", a + "/INBOX", a + "/[Gmail]/Sent Mail", "Mailboxes/Sent"}));
    EXPECT_TRUE(got.invalid.empty());
    EXPECT_GT(searching, 0);
  }
}

// The old layout: accounts in the mail folder, "mbox" files, .imapmbox, plain folders. The
// list findmail writes, given back line by line (with line ends), reads exactly what the
// account walk reads, under the same mailbox names.
TEST_F(MailWalkerTest, ListedMailboxesReadBackLikeTheirAccounts) {
  mbox("Library/Mail/POP-old@example.com/INBOX.mbox/mbox", {1, 2});
  emlx("Library/Mail/POP-old@example.com/Sent Messages.mbox/Messages/3.emlx", 3);
  emlx("Library/Mail/POP-old@example.com/Projects.mbox/Messages/4.emlx", 4);
  emlx("Library/Mail/POP-old@example.com/Projects.mbox/2019.mbox/Messages/5.emlx", 5);
  emlx("Library/Mail/IMAP-x@example.com/INBOX.imapmbox/Messages/6.emlx", 6);
  mbox("Library/Mail/Mailboxes/Local.mbox/mbox", {7});
  emlx("Library/Mail/Mailboxes/Folder/Inner.mbox/Messages/8.emlx", 8);
  const std::string mail = root() + "/Library/Mail";
  const List names = {"POP-old@example.com", "IMAP-x@example.com", "Mailboxes"};
  List lines = tools::listMailboxes(mail, names);
  for (std::string& line : lines) {
    line += "\n";
  }
  Collected byLines;
  Collected byAccounts;
  ASSERT_TRUE(tools::walkMailboxes(lines, byLines.sink(), byLines.invalidSink(), {}));
  ASSERT_TRUE(tools::walkAccounts(mail, names, {true, true}, byAccounts.sink(),
                                  byAccounts.invalidSink(), {}));
  EXPECT_EQ(byLines.mailboxes(),
            (List{"POP-old@example.com/INBOX", "POP-old@example.com/INBOX",
                  "POP-old@example.com/Projects", "POP-old@example.com/Projects/2019",
                  "POP-old@example.com/Sent Messages", "IMAP-x@example.com/INBOX",
                  "Mailboxes/Folder/Inner", "Mailboxes/Local"}));
  EXPECT_EQ(byLines.sources(), numberedMessages({1, 2, 4, 5, 3, 6, 8, 7}));
  EXPECT_EQ(byAccounts.mailboxes(), byLines.mailboxes());
  EXPECT_EQ(byAccounts.sources(), byLines.sources());

  // A parent mailbox's line does not take in its nested mailboxes, which have their own.
  Collected parentOnly;
  tools::walkMailboxes({mail + "/POP-old@example.com/Projects.mbox"}, parentOnly.sink(),
                       parentOnly.invalidSink(), {});
  EXPECT_EQ(parentOnly.mailboxes(), List{"POP-old@example.com/Projects"});
}

TEST_F(MailWalkerTest, BadFilesAreNamedAndTheWalkGoesOn) {
  const std::string box = root() + "/Box.mbox";
  for (const int i : {1, 3, 4, 10}) {  // 10 comes after 4: numbers, not names, give the order
    emlx("Box.mbox/Messages/" + std::to_string(i) + ".emlx", i);
  }
  writeFile(box + "/Messages/2.emlx", "not mail at all\n");
  emlx("Box.mbox/AB12/Data/Messages/20.emlx", 20);
  const bool root = ::geteuid() == 0;  // chmod does not stop root from reading
  if (!root) {
    fs::permissions(box + "/Messages/4.emlx", fs::perms::none);
    fs::permissions(box + "/AB12/Data", fs::perms::none);
  }
  Collected got;
  const std::string gone = this->root() + "/Gone.mbox";
  ASSERT_TRUE(tools::walkMailboxes({box, gone}, got.sink(), got.invalidSink(), {}));
  fs::permissions(box + "/AB12/Data", fs::perms::owner_all);  // so the folder can go
  const std::string messages = box + "/Messages/";
  EXPECT_EQ(got.invalid,
            (root ? List{messages + "2.emlx", gone}
                  : List{box + "/AB12/Data", messages + "2.emlx", messages + "4.emlx", gone}));
  EXPECT_EQ(got.sources(), numberedMessages(root ? std::vector<int>{20, 1, 3, 4, 10}
                                                 : std::vector<int>{1, 3, 10}));

  // The tool was told to stop: the walk ends at once.
  int delivered = 0;
  EXPECT_FALSE(tools::walkMailboxes(
      {box}, [&](tools::RawMessage&&) { return ++delivered < 2; }, [](const std::string&) {}, {}));
  EXPECT_EQ(delivered, 2);
}

TEST_F(MailWalkerTest, ChosenFilesAndExportedMailboxesWithTheirDates) {
  mbox("Export/X.mbox/mbox", {1, 2});
  mbox("Export/X.mbox/Sub.mbox/mbox", {3});
  mbox("plain.mbox", {4});
  emlx("single.emlx", 5);
  writeFile(root() + "/picture.png", "\x89PNG\r\n\x1a\n");
  const std::chrono::sys_seconds modified{std::chrono::seconds(1'400'000'000)};
  fs::last_write_time(root() + "/plain.mbox", std::chrono::file_clock::from_sys(modified));

  Collected got;
  ASSERT_TRUE(tools::walkMboxFiles(
      {root() + "/Export/X.mbox/", root() + "/plain.mbox\n", root() + "/single.emlx",
       root() + "/missing.mbox", root() + "/picture.png"},
      got.sink(), got.invalidSink(), {}));
  EXPECT_EQ(got.mailboxes(), (List{"X", "X", "X/Sub", "plain.mbox", "single.emlx"}));
  EXPECT_EQ(got.sources(), numberedMessages({1, 2, 3, 4, 5}));
  EXPECT_EQ(got.invalid, (List{root() + "/missing.mbox", root() + "/picture.png"}));
  const tools::RawMessage& fromMbox = got.messages.at(3);
  EXPECT_EQ(fromMbox.path, root() + "/plain.mbox");
  EXPECT_EQ(fromMbox.postmarkDate, 1514800800);
  EXPECT_EQ(fromMbox.fileModified, 1'400'000'000);
  const tools::RawMessage& fromEmlx = got.messages.at(4);
  EXPECT_EQ(fromEmlx.plistDateSent, 1500000000);
  EXPECT_EQ(fromEmlx.plistDateReceived, 1500000100);
  EXPECT_FALSE(fromEmlx.postmarkDate.has_value());
}

}  // namespace
}  // namespace quillery::test
