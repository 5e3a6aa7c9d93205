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
using tools::WalkOptions;

constexpr char kUuid[] = "1F2E3D4C-0000-4000-8000-00000000A001";

class MailWalkerTest : public ::testing::Test {
 protected:
  std::string root() const { return dir_.path().toStdString(); }
  void emlx(const std::string& path, int i) const {
    SourceFixtures::write(root() + "/" + path, SourceFixtures::emlx(SourceFixtures::message(i)));
  }
  void mbox(const std::string& path, std::initializer_list<int> numbers) const {
    std::string file;
    for (const int i : numbers) {
      file += "From s@example.com Mon Jan  1 10:00:00 2018\n" + SourceFixtures::message(i) + "\n";
    }
    SourceFixtures::write(root() + "/" + path, file);
  }
  // The current layout: version folder, UUID account, hashed Data folders, local Mailboxes.
  void writeCurrentLayout() const {
    const std::string account = std::string("Library/Mail/V10/") + kUuid;
    emlx(account + "/INBOX.mbox/AB12/Data/1/Messages/10.emlx", 10);
    emlx(account + "/INBOX.mbox/AB12/Data/Messages/11.emlx", 11);
    emlx(account + "/INBOX.mbox/Receipts.mbox/Messages/17.emlx", 17);
    emlx(account + "/[Gmail].mbox/Sent Mail.mbox/Messages/12.emlx", 12);
    emlx(account + "/[Gmail].mbox/All Mail.mbox/Messages/13.emlx", 13);
    emlx(account + "/Junk.mbox/Messages/14.emlx", 14);
    emlx(account + "/Trash.mbox/Old.mbox/Messages/16.emlx", 16);
    emlx(account + "/.Hidden.mbox/Messages/97.emlx", 97);
    emlx("Library/Mail/V10/Mailboxes/Archive.mbox/Messages/15.emlx", 15);
    emlx("Library/Mail/V10/Mailboxes/Sent.mbox/Messages/18.emlx", 18);
    emlx("Library/Mail/V10/MailData/Hidden.mbox/Messages/99.emlx", 99);
    emlx("Library/Mail/V10/Signatures/Sig.mbox/Messages/98.emlx", 98);
  }
  // The old layout: accounts in the mail folder, "mbox" files, .imapmbox, plain folders.
  void writeOldLayout() const {
    mbox("Library/Mail/POP-old@example.com/INBOX.mbox/mbox", {1, 2});
    emlx("Library/Mail/POP-old@example.com/Sent Messages.mbox/Messages/3.emlx", 3);
    emlx("Library/Mail/POP-old@example.com/Projects.mbox/Messages/4.emlx", 4);
    emlx("Library/Mail/POP-old@example.com/Projects.mbox/2019.mbox/Messages/5.emlx", 5);
    emlx("Library/Mail/IMAP-x@example.com/INBOX.imapmbox/Messages/6.emlx", 6);
    mbox("Library/Mail/Mailboxes/Local.mbox/mbox", {7});
    emlx("Library/Mail/Mailboxes/Folder/Inner.mbox/Messages/8.emlx", 8);
  }

 private:
  QTemporaryDir dir_;
};

TEST_F(MailWalkerTest, AccountWalkReadsTheBoxesTheSwitchesChoose) {
  writeCurrentLayout();
  const std::string a = kUuid;
  const std::vector<std::pair<WalkOptions, std::vector<std::string>>> cases = {
      {{false, false}, {a + "/INBOX", a + "/INBOX", a + "/[Gmail]/Sent Mail", "Mailboxes/Sent"}},
      {{true, false},
       {a + "/INBOX", a + "/INBOX", a + "/INBOX/Receipts", a + "/[Gmail]/All Mail",
        a + "/[Gmail]/Sent Mail", "Mailboxes/Archive", "Mailboxes/Sent"}},
      {{false, true},
       {a + "/INBOX", a + "/INBOX", a + "/Junk", a + "/Trash/Old", a + "/[Gmail]/Sent Mail",
        "Mailboxes/Sent"}},
      {{true, true},
       {a + "/INBOX", a + "/INBOX", a + "/INBOX/Receipts", a + "/Junk", a + "/Trash/Old",
        a + "/[Gmail]/All Mail", a + "/[Gmail]/Sent Mail", "Mailboxes/Archive", "Mailboxes/Sent"}}};
  for (const auto& [options, expected] : cases) {
    Collected got;
    int searching = 0;
    // "V10" and "Mailboxes" both stand for V10/Mailboxes: its messages come once.
    ASSERT_TRUE(tools::walkAccounts(root() + "/Library/Mail", {"V10", "Mailboxes\n"}, options,
                                    got.sink(), got.invalidSink(), [&] { ++searching; }));
    EXPECT_EQ(got.mailboxes(), expected)
        << "allMailboxes " << options.allMailboxes << " includeTrash " << options.includeTrash;
    EXPECT_TRUE(got.invalid.empty());
    EXPECT_GT(searching, 0);
  }
}

// The list findmail writes, given back line by line (with line ends), reads exactly what the
// account walk reads, under the same mailbox names.
TEST_F(MailWalkerTest, ListedMailboxesReadBackLikeTheirAccounts) {
  writeOldLayout();
  const std::string mail = root() + "/Library/Mail";
  const std::vector<std::string> names = {"POP-old@example.com", "IMAP-x@example.com", "Mailboxes"};
  const std::vector<std::string> lines = tools::listMailboxes(mail, names);
  const std::string pop = mail + "/POP-old@example.com/";
  EXPECT_EQ(lines, (std::vector<std::string>{
                       pop + "INBOX.mbox", pop + "Projects.mbox", pop + "Projects.mbox/2019.mbox",
                       pop + "Sent Messages.mbox", mail + "/IMAP-x@example.com/INBOX.imapmbox",
                       mail + "/Mailboxes/Folder/Inner.mbox", mail + "/Mailboxes/Local.mbox"}));

  std::vector<std::string> withLineEnds;
  for (const std::string& line : lines) {
    withLineEnds.push_back(line + "\n");
  }
  Collected byLines;
  Collected byAccounts;
  ASSERT_TRUE(tools::walkMailboxes(withLineEnds, byLines.sink(), byLines.invalidSink(), {}));
  ASSERT_TRUE(tools::walkAccounts(mail, names, {true, true}, byAccounts.sink(),
                                  byAccounts.invalidSink(), {}));
  EXPECT_EQ(
      byLines.mailboxes(),
      (std::vector<std::string>{"POP-old@example.com/INBOX", "POP-old@example.com/INBOX",
                                "POP-old@example.com/Projects", "POP-old@example.com/Projects/2019",
                                "POP-old@example.com/Sent Messages", "IMAP-x@example.com/INBOX",
                                "Mailboxes/Folder/Inner", "Mailboxes/Local"}));
  EXPECT_EQ(byAccounts.mailboxes(), byLines.mailboxes());
  ASSERT_EQ(byAccounts.messages.size(), byLines.messages.size());
  for (std::size_t i = 0; i < byLines.messages.size(); ++i) {
    EXPECT_EQ(byLines.messages[i].source, byAccounts.messages[i].source);
  }
  EXPECT_EQ(byLines.messages[0].source, SourceFixtures::message(1));

  // A parent mailbox's line does not take in its nested mailboxes, which have their own.
  Collected parentOnly;
  tools::walkMailboxes({lines[1]}, parentOnly.sink(), parentOnly.invalidSink(), {});
  EXPECT_EQ(parentOnly.mailboxes(), std::vector<std::string>{"POP-old@example.com/Projects"});
}

TEST_F(MailWalkerTest, BadFilesAreNamedAndTheWalkGoesOn) {
  const std::string box = root() + "/Box.mbox";
  emlx("Box.mbox/Messages/1.emlx", 1);
  SourceFixtures::write(box + "/Messages/2.emlx", "not mail at all\n");
  emlx("Box.mbox/Messages/3.emlx", 3);
  emlx("Box.mbox/Messages/4.emlx", 4);
  emlx("Box.mbox/Messages/10.emlx", 10);  // after 4: numbers, not names, give the order
  emlx("Box.mbox/AB12/Data/Messages/20.emlx", 20);
  const bool root = ::geteuid() == 0;  // chmod does not stop root from reading
  if (!root) {
    fs::permissions(box + "/Messages/4.emlx", fs::perms::none);
    fs::permissions(box + "/AB12/Data", fs::perms::none);
  }
  Collected got;
  ASSERT_TRUE(
      tools::walkMailboxes({box, this->root() + "/Gone.mbox"}, got.sink(), got.invalidSink(), {}));
  std::vector<std::string> expectedInvalid;
  if (!root) {
    expectedInvalid = {box + "/AB12/Data", box + "/Messages/2.emlx", box + "/Messages/4.emlx"};
  } else {
    expectedInvalid = {box + "/Messages/2.emlx"};
  }
  expectedInvalid.push_back(this->root() + "/Gone.mbox");
  EXPECT_EQ(got.invalid, expectedInvalid);
  std::vector<std::string> sources;
  for (const tools::RawMessage& m : got.messages) {
    sources.push_back(m.source);
  }
  std::vector<std::string> expected;
  for (const int i : root ? std::vector<int>{20, 1, 3, 4, 10} : std::vector<int>{1, 3, 10}) {
    expected.push_back(SourceFixtures::message(i));
  }
  EXPECT_EQ(sources, expected);
  if (!root) {
    fs::permissions(box + "/AB12/Data", fs::perms::owner_all);  // so the folder can go
  }

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
  SourceFixtures::write(root() + "/picture.png", "\x89PNG\r\n\x1a\n");
  const auto modified = fs::file_time_type::clock::now() - std::chrono::hours(24 * 400);
  fs::last_write_time(root() + "/plain.mbox", modified);

  Collected got;
  ASSERT_TRUE(tools::walkMboxFiles(
      {root() + "/Export/X.mbox/", root() + "/plain.mbox\n", root() + "/single.emlx",
       root() + "/missing.mbox", root() + "/picture.png"},
      got.sink(), got.invalidSink(), {}));
  EXPECT_EQ(got.mailboxes(),
            (std::vector<std::string>{"X", "X", "X/Sub", "plain.mbox", "single.emlx"}));
  EXPECT_EQ(got.invalid,
            (std::vector<std::string>{root() + "/missing.mbox", root() + "/picture.png"}));
  ASSERT_EQ(got.messages.size(), 5u);
  const tools::RawMessage& fromMbox = got.messages[3];
  EXPECT_EQ(fromMbox.source, SourceFixtures::message(4));
  EXPECT_EQ(fromMbox.path, root() + "/plain.mbox");
  EXPECT_EQ(fromMbox.postmarkDate, 1514800800);
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(
      std::chrono::file_clock::to_sys(modified).time_since_epoch());
  EXPECT_EQ(fromMbox.fileModified, seconds.count());
  const tools::RawMessage& fromEmlx = got.messages[4];
  EXPECT_EQ(fromEmlx.source, SourceFixtures::message(5));
  EXPECT_EQ(fromEmlx.plistDateSent, 1500000000);
  EXPECT_EQ(fromEmlx.plistDateReceived, 1500000100);
  EXPECT_FALSE(fromEmlx.postmarkDate.has_value());
}

// A mailbox moved elsewhere and linked back is read; a link back up the tree is no loop.
TEST_F(MailWalkerTest, LinkedMailboxesAreFollowedOnce) {
  emlx("Library/Mail/Acct/INBOX.mbox/Messages/1.emlx", 1);
  emlx("Elsewhere/Moved.mbox/Messages/2.emlx", 2);
  fs::create_directory_symlink(root() + "/Elsewhere/Moved.mbox",
                               root() + "/Library/Mail/Acct/Moved.mbox");
  fs::create_directory_symlink(root() + "/Library/Mail/Acct",
                               root() + "/Library/Mail/Acct/INBOX.mbox/Loop.mbox");
  Collected got;
  ASSERT_TRUE(tools::walkAccounts(root() + "/Library/Mail", {"Acct"}, {true, true}, got.sink(),
                                  got.invalidSink(), {}));
  EXPECT_EQ(got.mailboxes(), (std::vector<std::string>{"Acct/INBOX", "Acct/Moved"}));
}

}  // namespace
}  // namespace quillery::test
