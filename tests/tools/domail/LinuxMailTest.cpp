// The mail that Linux users keep, stored as the application stores an mbox run: Maildir
// folders, Thunderbird profiles, folders of saved messages and Gmail Takeout's labels. The
// real tool reads trees written here, and every record is compared whole.
#include <gtest/gtest.h>

#include <filesystem>

#include "ToolRun.h"
#include "support/driver/DomailDriver.h"

namespace quillery::tools::test {
namespace {

namespace fs = std::filesystem;
using List = std::vector<std::string>;
using ::quillery::test::DomailDriver;

std::string crlf(const std::string& text) {
  std::string out;
  for (const char c : text) {
    out += c == '\n' ? "\r\n" : std::string(1, c);
  }
  return out;
}

// An mbox file as Thunderbird writes it.
std::string thunderbirdMbox(const List& subjects) {
  std::string out;
  for (const std::string& s : subjects) {
    out += "From - Mon Jan  7 10:00:00 2019\n" + mail(s, kDate, "X-Mozilla-Status: 0001\n") + "\n";
  }
  return out;
}

ToolOutcome storeFolder(const std::string& path) {
  ToolRequest request;
  request.sources = {path};
  return runTool(request);
}

TEST(LinuxMailTest, AMaildirGivesEachMessageOnceWithItsSubfoldersAndWithoutTmp) {
  ScratchDir home;
  const std::string md = home / "Maildir/";
  writeFile(md + "cur/1700000000.M0P1.host:2,S", mail("seen"));
  writeFile(md + "new/1700000001.M1P1.host", mail("no date", ""));
  writeFile(md + "cur/1700000002.M2P1.host:2,RS", crlf(mail("crlf")));
  writeFile(md + "tmp/1700000003.M3P1.host", mail("still arriving"));
  // Caught between new/ and cur/ by a mail client: one message.
  writeFile(md + "new/1700000004.M4P1.host", mail("moved"));
  writeFile(md + "cur/1700000004.M4P1.host:2,S", mail("moved"));
  writeFile(md + "cur/1700000005.M5P1.host:2,", "\x89PNG\r\n\x1a\n");
  writeFile(md + "cur/1700000006.M6P1.host:2,S",
            "From sender@example.com Mon Jan  7 10:00:00 2019\n" + mail("postmark first"));
  writeFile(md + "cur/.nfs0001", "left by NFS");
  writeFile(md + "dovecot-uidlist", "3 V1 N6\n");
  writeFile(md + ".Sent/cur/1600000000.M0P1.host:2,S", mail("sent"));
  writeFile(md + ".Sent/maildirfolder", "");
  writeFile(md + ".Archives.2019/new/1550000000.M0P1.host", mail("archived"));
  writeFile(md + ".Entw&APw-rfe/cur/1650000000.M0P1.host:2,D", mail("draft"));
  for (const char* folder : {".Sent/new", ".Archives.2019/cur", ".Entw&APw-rfe/tmp"}) {
    fs::create_directories(md + folder);
  }
  const ToolOutcome run = storeFolder(home / "Maildir");
  EXPECT_EQ(run.records(),
            (List{record("Maildir", "seen"),
                  // No Date: the delivery time the file's name begins with.
                  record("Maildir", "no date", "2023-11-14 22:13:21"), record("Maildir", "crlf"),
                  record("Maildir", "moved"), record("Maildir", "postmark first"),
                  record("Archives/2019", "archived"), record("Entwürfe", "draft"),
                  record("Sent", "sent")}));
  EXPECT_EQ(run.messages.at(2).raw, crlf(mail("crlf"))) << "read byte for byte";
  EXPECT_EQ(run.invalid, List{md + "cur/1700000005.M5P1.host:2,"});
  EXPECT_EQ(run.faults, 0);

  // The date range applies as it does to mbox messages.
  ToolRequest since;
  since.sources = {home / "Maildir/"};
  since.begin = "2023-11-14 00:00:00";
  EXPECT_EQ(runTool(since).subjects(), "no date");
}

// A mail client moves a message from new/ to cur/, and deletes another, while the tool walks.
TEST(LinuxMailTest, AMaildirChangingDuringTheWalkGivesEachMessageOnce) {
  ScratchDir home;
  const std::string md = home / "Maildir/";
  for (const char* n : {"1", "2", "3", "4"}) {
    writeFile(md + "new/170000000" + n + ".M1P1.host", mail(n));
  }
  fs::create_directories(md + "cur");
  ToolRequest request;
  request.sources = {home / "Maildir"};
  DomailDriver driver(domailPath());
  ASSERT_TRUE(driver.start(toolArguments(request, home / "a.log"), {"TZ=UTC"}));
  List subjects;
  while (std::optional<std::string> announcement = driver.nextAnnouncement()) {
    subjects.push_back(StoredRecord::read(readFile(home / "a.tmp")).subject);
    if (subjects.size() == 1) {  // the tool is reading message 2 now, 3 and 4 not yet
      fs::rename(md + "new/1700000003.M1P1.host", md + "cur/1700000003.M1P1.host:2,S");
      fs::remove(md + "new/1700000004.M1P1.host");
    }
    driver.answer();
  }
  EXPECT_EQ(driver.wait(30000), 0);
  EXPECT_EQ(subjects, (List{"1", "2", "3"}));
  EXPECT_EQ(readFile(home / "a.log"), "PARSED: 3\n") << "nothing named invalid";
}

TEST(LinuxMailTest, AThunderbirdProfileGivesTheMailboxesOfEveryAccountAndNothingElse) {
  ScratchDir home;
  const std::string profile = home / ".thunderbird/abcd1234.default-release/";
  writeFile(home / ".thunderbird/profiles.ini", "[Profile0]\nName=default-release\n");
  writeFile(home / ".thunderbird/Crash Reports/InstallTime20230101", "1672531200");
  for (const char* file : {"prefs.js", "places.sqlite", "extensions.json", "cache2/entries/A1"}) {
    writeFile(profile + file, "// not mail\n");
  }
  const std::string local = profile + "Mail/Local Folders/";
  writeFile(local + "Inbox", thunderbirdMbox({"local 1", "local 2"}));
  writeFile(local + "Archives", "");
  writeFile(local + "Archives.sbd/2019", thunderbirdMbox({"archived"}));
  writeFile(local + "Trash", thunderbirdMbox({"binned"}));  // its index was deleted
  for (const char* file : {"Inbox.msf", "Archives.msf", "Archives.sbd/2019.msf"}) {
    writeFile(local + file, "// <(a=c)(80=)> mork index\n");
  }
  writeFile(local + "msgFilterRules.dat", "version=\"9\"\nlogging=\"no\"\n");
  const std::string imap = profile + "ImapMail/imap.example.com/";
  writeFile(imap + "INBOX", thunderbirdMbox({"imap 1"}));
  writeFile(imap + "[Gmail].sbd/Sent Mail", thunderbirdMbox({"imap sent"}));
  for (const char* file : {"INBOX.msf", "[Gmail].msf", "[Gmail].sbd/Sent Mail.msf"}) {
    writeFile(imap + file, "// <(a=c)(80=)> mork index\n");
  }
  writeFile(imap + "filterlog.html", "<html></html>\n");
  writeFile(imap + "notes", "a file of the user's, no mailbox\n");
  writeFile(imap + "Junk", "not mail beside its index\n");
  writeFile(imap + "Junk.msf", "// <(a=c)(80=)> mork index\n");

  const ToolOutcome run = storeFolder(profile);
  EXPECT_EQ(run.records(),
            (List{record("INBOX", "imap 1"), record("[Gmail]/Sent Mail", "imap sent"),
                  record("Archives/2019", "archived"), record("Inbox", "local 1"),
                  record("Inbox", "local 2"), record("Trash", "binned")}));
  EXPECT_EQ(run.invalid, List{imap + "Junk"});
  // Thunderbird's folder gives its profiles; the Mail folder and the account folder chosen
  // on their own name the same mailboxes.
  EXPECT_EQ(storeFolder(home / ".thunderbird").records(), run.records());
  EXPECT_EQ(storeFolder(profile + "Mail").records(), storeFolder(local).records());
  EXPECT_EQ(storeFolder(local).subjects(), "archived|local 1|local 2|binned");
}

TEST(LinuxMailTest, AFolderOfSavedMessagesIsWalkedWithEveryFileReadForWhatItHolds) {
  ScratchDir home;
  const std::string saved = home / "saved/";
  writeFile(saved + "a.eml", mail("a"));
  writeFile(saved + "b.eml", crlf(mail("b")));
  writeFile(saved + "lists.mbox", "From x@y Mon Jan  7 10:00:00 2019\n" + mail("in an mbox"));
  writeFile(saved + "notes.pdf", "%PDF-1.4\n");
  writeFile(saved + ".DS_Store", "\0\0\0\1Bud1");
  writeFile(saved + "2019/March/c.eml", mail("c"));
  const ToolOutcome run = storeFolder(saved);
  EXPECT_EQ(run.records(), (List{record("saved", "a"), record("saved", "b"),
                                 record("lists.mbox", "in an mbox"), record("2019/March", "c")}));
  EXPECT_EQ(run.messages.at(1).raw, crlf(mail("b")));
  EXPECT_EQ(run.invalid, List{saved + "notes.pdf"});
  EXPECT_EQ(run.parsed, 4);
}

TEST(LinuxMailTest, GmailTakeoutLabelsNameTheMailbox) {
  const std::pair<const char*, const char*> labels[] = {
      {"X-Gmail-Labels: Opened,Inbox,Category Updates\n", "Inbox"},
      {"X-Gmail-Labels: Important,\"Receipts, 2019\",Inbox\n", "Receipts, 2019"},
      {"X-Gmail-Labels: \"Say \"\"hi\"\"\",Sent\n", "Say \"hi\""},
      {"X-Gmail-Labels: =?UTF-8?Q?Archived,Gesch=C3=A4ftlich?=\n", "Geschäftlich"},
      {"X-Gmail-Labels: Unread,Opened,\n Reisen/\xC3\x9C"
       "berfahrt\n",
       "Reisen/Überfahrt"},
      {"X-Gmail-Labels: Unread,Category Promotions,Important,Starred\n", "Takeout.mbox"},
      {"", "Takeout.mbox"},
  };
  ScratchDir dir;
  std::string mbox;
  List expected;
  for (const auto& [header, mailbox] : labels) {
    const std::string subject = "labelled " + std::to_string(expected.size());
    mbox += "From 1600000000000000000@xxx Wed Jan 01 10:00:00 +0000 2020\n" +
            mail(subject, kDate, "X-GM-THRID: 16\n" + std::string(header)) + "\n";
    expected.push_back(record(mailbox, subject));
  }
  writeFile(dir / "Takeout.mbox", mbox);
  EXPECT_EQ(storeFolder(dir / "Takeout.mbox").records(), expected);
}

}  // namespace
}  // namespace quillery::tools::test
