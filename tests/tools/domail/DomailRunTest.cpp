// The tool on mail that the tests write, driven as the application drives it: the date
// range, the switches, record texts that must not end a record early, announcements that
// must always be answerable, and the ways a run ends (closed input, signals, closed output,
// a malformed command line).
#include <gtest/gtest.h>
#include <signal.h>

#include <filesystem>

#include "ToolRun.h"
#include "support/driver/DomailDriver.h"

namespace quillery::tools::test {
namespace {

using ::quillery::test::DomailDriver;

// The subjects of a run that must go without a fault, in the order the tool announced them.
std::string subjectsOf(const ToolRequest& request) {
  const ToolOutcome run = runTool(request);
  EXPECT_EQ(run.faults, 0);
  EXPECT_EQ(run.exitStatus, 0);
  return run.subjects();
}

TEST(DomailRunTest, DateRangeComparesLocalDateTextsWithBothEnds) {
  ScratchDir dir;
  writeFile(dir / "dates.mbox",
            mbox({mail("feb 28 late", "Thu, 28 Feb 2019 23:59:59 +0000"),
                  mail("mar 1 midnight", "Fri, 1 Mar 2019 00:00:00 +0000"),
                  mail("mar 15", "Fri, 15 Mar 2019 12:00:00 +0000"),
                  mail("apr 1 midnight", "Mon, 1 Apr 2019 00:00:00 +0000"),
                  mail("apr 1 noon", "Mon, 1 Apr 2019 12:00:00 +0000"),
                  // No Date: the postmark's Sat Mar 2 2019 counts.
                  mail("postmark only", ""), mail("2020", "Tue, 10 Mar 2020 08:00:00 GMT")}));
  ToolRequest request;
  request.sources = {dir / "dates.mbox"};
  const std::tuple<const char*, const char*, const char*, const char*> ranges[] = {
      {"2019-03-01", "2019-04-01", "UTC",
       "mar 1 midnight|mar 15|apr 1 midnight|apr 1 noon|postmark only"},
      // The end day is taken in whole.
      {"0000-00-00", "2019-03-15", "UTC", "feb 28 late|mar 1 midnight|mar 15|postmark only"},
      // "All" for the day alone: the month's texts sort after "2019-03-00".
      {"2019-03-00", "2019-04-00", "UTC", "mar 1 midnight|mar 15|postmark only"},
      {"2019-04-00", "9999-99-15", "UTC", "apr 1 midnight|apr 1 noon|2020"},
      {"2021-01-01", "9999-99-99", "UTC", ""},
      // Dates are local: in Tokyo the last second of February UTC is March 1st.
      {"2019-03-01", "2019-03-01", "Asia/Tokyo", "feb 28 late|mar 1 midnight"},
  };
  for (const auto& [begin, end, tz, subjects] : ranges) {
    SCOPED_TRACE(std::string(begin) + " .. " + end + " in " + tz);
    request.begin = begin + std::string(" 00:00:00");
    request.end = end + std::string(" 00:00:00");
    request.tz = tz;
    const ToolOutcome run = runTool(request);
    EXPECT_EQ(run.subjects(), subjects);
    EXPECT_EQ(run.parsed, 7) << "every message read counts as parsed";
    EXPECT_EQ(run.faults, 0);
    EXPECT_EQ(run.exitStatus, 0);
  }
}

TEST(DomailRunTest, SwitchesChooseMailboxesAndParts) {
  ScratchDir home;
  const std::string account = home / "Library/Mail/V2/Work/";
  for (const std::string box : {"INBOX", "Sent Messages", "Projects", "Trash", "Junk"}) {
    writeFile(account + box + ".mbox/Messages/1.emlx", emlx(mail("work " + box)));
  }
  writeFile(home / "Library/Mail/V2/Mailboxes/Saved.mbox/Messages/9.emlx", emlx(mail("saved")));
  ToolRequest request;
  request.mode = ToolRequest::Accounts;
  request.home = home.path();
  request.sources = {"Work", "Mailboxes"};
  EXPECT_EQ(subjectsOf(request), "work INBOX|work Projects|work Sent Messages|saved");
  request.allMailboxes = false;
  request.trash = true;
  EXPECT_EQ(subjectsOf(request), "work INBOX|work Junk|work Sent Messages|work Trash");

  // Mailbox mode takes exactly the listed boxes, whatever the switches say.
  request.mode = ToolRequest::Mailboxes;
  request.trash = false;
  request.sources = {account + "Projects.mbox\n", account + "Trash.mbox\n"};
  const ToolOutcome boxesRun = runTool(request);
  EXPECT_EQ(boxesRun.subjects(), "work Projects|work Trash");
  EXPECT_EQ(boxesRun.messages.at(0).record.mailbox, "Work/Projects");

  // The part switches on a message with an HTML alternative and a PDF.
  writeFile(
      home / "parts.mbox",
      mbox({mail("parts", kDate, "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n",
                 "--m\nContent-Type: multipart/alternative; boundary=a\n\n--a\n"
                 "Content-Type: text/plain\n\nplain words\n--a\nContent-Type: text/html\n\n"
                 "<p>html <b>words</b></p>\n--a--\n--m\nContent-Type: application/pdf; "
                 "name=report.pdf\nContent-Transfer-Encoding: base64\n\nJVBERi0xLjQK\n--m--\n")}));
  request.mode = ToolRequest::Mbox;
  request.sources = {home / "parts.mbox"};
  const std::string html = "|part-1.2.html 8bit <p>html <b>words</b></p>\n";
  const std::string pdf = "|report.pdf base64 %PDF-1.4\n";
  const std::tuple<bool, bool, std::string> switches[] = {
      {false, false, ""}, {false, true, html}, {true, false, pdf}, {true, true, html + pdf}};
  for (const auto& [attachments, htmlParts, expected] : switches) {
    request.attachments = attachments;
    request.htmlParts = htmlParts;
    const ToolOutcome run = runTool(request);
    const StoredRecord& r = run.messages.at(0).record;
    std::string stored = r.body;
    for (const StoredRecord::Attachment& a : r.attachments) {
      stored += "|" + a.filename + " " + a.encoding + " " + a.bytes();
    }
    EXPECT_EQ(stored, "plain words" + expected);
    EXPECT_EQ(run.attachmentStatuses > 0, attachments || htmlParts);
  }
  // Without the raw switch the tool writes no raw file and the run goes on.
  request.raw = false;
  EXPECT_EQ(subjectsOf(request), "parts");
}

// Message texts that look like the record's own lines, and messages whose announcement could
// be taken for a status: a mailbox file named "attachment" and a message without a subject
// would announce "...attachment\n", which the application never answers.
TEST(DomailRunTest, OddMessagesNeverEndARecordEarlyAndAreAlwaysAnswerable) {
  auto tricky = [](const std::string& guard) {
    const std::string lines =
        "first line\nENDOFBODY:\ntext then ENDOFBODY:\nENDOFEMAIL: not yet\nENDATTACH:\n"
        "ENDATTACHMENTS:\n" +
        guard + "RAW: like a tag\n" + guard + "ENDOFRAW:\nlast line\n";
    return mail("tricky", kDate, "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n",
                "--m\nContent-Type: text/plain\n\n" + lines +
                    "--m\nContent-Type: text/plain; name=notes.txt\n"
                    "Content-Disposition: attachment\n\n" +
                    lines + "--m--\n");
  };
  ScratchDir dir;
  writeFile(
      dir / "attachment",
      mbox({tricky(""), "From: a@example.com\nDate: Mon, 7 Jan 2019 10:00:00 +0000\n\nno subject\n",
            mail("Looking for email"), mail(std::string(5000, 'x')),
            mail("Gr\xFC\xDF"
                 "e in Latin-1")}));
  ToolRequest request;
  request.sources = {dir / "attachment"};
  const ToolOutcome run = runTool(request);
  ASSERT_EQ(run.messages.size(), 5u) << "every message was announced and answered";
  EXPECT_EQ(run.faults, 0);
  for (const AnnouncedMessage& m : run.messages) {
    EXPECT_LE(m.announcement.size(), 2001u) << "one atomic pipe write";
    EXPECT_TRUE(m.announcement.starts_with(dir / "attachment\n"));
  }
  EXPECT_EQ(run.messages[4].record.subject, "Grüße in Latin-1");
  EXPECT_EQ(run.messages[3].record.subject.size(), 5000u) << "the record keeps it whole";
  // The reader gets every line; the guards add one blank where a line would end the record.
  const std::string guarded =
      "first line\nENDOFBODY: \ntext then ENDOFBODY: \n ENDOFEMAIL: not yet\nENDATTACH: \n"
      "ENDATTACHMENTS:\nRAW: like a tag\nENDOFRAW:\nlast line";
  const StoredRecord& r = run.messages[0].record;
  EXPECT_EQ(r.body, guarded);
  ASSERT_EQ(r.attachments.size(), 1u);
  EXPECT_EQ(r.attachments[0].filename, "notes.txt");
  EXPECT_EQ(r.attachments[0].blob, guarded + "\n");
  EXPECT_EQ(run.messages[1].record.body, "no subject") << "the next record starts whole";
  // In the raw file only the lines that the raw reader would skip or stop at get a blank.
  EXPECT_EQ(run.messages[0].raw, tricky(" "));
}

// Text between two postmarks that opens with no header block is a message without headers,
// dated by its postmark; lines in it that look like headers stay body text, and the file is
// not named invalid for it.
TEST(DomailRunTest, TextBetweenPostmarksWithoutHeadersIsAMessageOfItsOwn) {
  ScratchDir dir;
  const std::string odd =
      "Just some text\nSubject: not a header here\nDate: Tue, 1 Jan 2030 10:00:00 +0000\n\n"
      "and a last line\n";
  const std::string indented = "\tindented words\r\nFrom: nobody@example.com\r\n";
  writeFile(dir / "odd.mbox", mbox({mail("first")}) + "From b@c Sun Mar  3 13:14:15 2019\n" + odd +
                                  "\n" + mbox({mail("last")}));
  writeFile(dir / "opens.mbox", "From x@y Fri Feb  1 08:00:00 2019\n" + indented);
  ToolRequest request;
  request.sources = {dir / "odd.mbox", dir / "opens.mbox"};
  const ToolOutcome run = runTool(request);
  EXPECT_EQ(run.records(),
            (std::vector<std::string>{
                record("odd.mbox", "first"),
                "odd.mbox||||2019-03-03 13:14:15||" + odd.substr(0, odd.size() - 1),
                record("odd.mbox", "last"),
                "opens.mbox||||2019-02-01 08:00:00||indented words\nFrom: nobody@example.com"}));
  EXPECT_EQ(run.messages.at(1).raw, odd) << "the source is kept as it stands";
  EXPECT_EQ(run.invalid, std::vector<std::string>{});
  EXPECT_EQ(run.parsed, 4);
  EXPECT_EQ(run.faults, 0);
}

TEST(DomailRunTest, EndOfInputSignalsAndAClosedOutputEndTheRunCleanly) {
  ScratchDir dir;
  writeFile(dir / "five.mbox", mbox({mail("1"), mail("2"), mail("3"), mail("4"), mail("5")}));
  ToolRequest request;
  request.sources = {dir / "five.mbox"};
  // Closed input (0), each stop signal, or a closed output after two answers (-1).
  for (const int ending : {0, SIGTERM, SIGINT, SIGHUP, SIGPIPE, -1}) {
    SCOPED_TRACE("ending " + std::to_string(ending));
    const std::string run = dir / std::to_string(ending + 1);
    DomailDriver driver(domailPath());
    ASSERT_TRUE(driver.start(toolArguments(request, run + ".log")));
    ASSERT_TRUE(driver.nextAnnouncement().has_value());
    if (ending == 0) {
      driver.closeInput();
    } else if (ending > 0) {
      ASSERT_TRUE(driver.signal(ending));
    } else {
      driver.answer();
      ASSERT_TRUE(driver.nextAnnouncement().has_value());
      driver.answer();
      driver.closeOutput();  // the application is gone
    }
    EXPECT_EQ(driver.wait(30000), 0);
    EXPECT_EQ(readFile(run + ".log"), ending < 0 ? "PARSED: 3\n" : "PARSED: 1\n");
    // The message file still holds the whole record of the last announced message.
    EXPECT_TRUE(StoredRecord::read(readFile(run + ".tmp")).ended);
  }
}

TEST(DomailRunTest, AMalformedCommandLineIsRefused) {
  ScratchDir dir;
  ToolRequest request;
  request.sources = {dir / "none.mbox"};
  const std::vector<std::string> good = toolArguments(request, dir / "a.log");
  std::vector<std::vector<std::string>> bad(3, good);
  bad[0].resize(9);          // too few
  bad[1][3] = "yes";         // a switch
  bad[2][8] = "2019-03-01";  // a date
  for (const std::vector<std::string>& arguments : bad) {
    DomailDriver driver(domailPath());
    ASSERT_TRUE(driver.start(arguments));
    EXPECT_FALSE(driver.nextAnnouncement().has_value());
    EXPECT_EQ(driver.wait(30000), 2);
  }
  EXPECT_FALSE(std::filesystem::exists(dir / "a.log"));
  DomailDriver driver(domailPath());
  ASSERT_TRUE(driver.start(good));
  EXPECT_EQ(driver.wait(30000), 0);
  EXPECT_EQ(readFile(dir / "a.log"), "INVALID: " + dir / "none.mbox" + "\nPARSED: 0\n");
}

}  // namespace
}  // namespace quillery::tools::test
