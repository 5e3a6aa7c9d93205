// The tool on mail that the tests write, driven as the application drives it: the date
// range, the switches, record texts that must not end a record early, announcements that
// must always be answerable, and the ways a run ends (closed input, signals, closed output).
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "ToolRun.h"
#include "domail/DomailDriver.h"

namespace quillery::tools::test {
namespace {

namespace fs = std::filesystem;

std::string message(const std::string& subject, const std::string& date,
                    const std::string& body = "Hello.\n", const std::string& extra = "") {
  return "From: Sender <sender@example.com>\nTo: owner@example.org\nSubject: " + subject + "\n" +
         (date.empty() ? "" : "Date: " + date + "\n") + extra + "\n" + body;
}

std::string mbox(const std::vector<std::string>& messages) {
  std::string out;
  for (const std::string& m : messages) {
    out += "From sender@example.com Sat Mar  2 12:00:00 2019\n" + m + "\n";
  }
  return out;
}

std::vector<std::string> subjectsIn(const ToolRequest& request) {
  const ToolOutcome run = runTool(request);
  EXPECT_EQ(run.faults, 0);
  EXPECT_EQ(run.exitStatus, 0);
  return run.subjects();
}

TEST(DomailRunTest, DateRangeComparesLocalDateTextsWithBothEnds) {
  ScratchDir dir;
  writeFile(dir / "dates.mbox",
            mbox({message("feb 28 late", "Thu, 28 Feb 2019 23:59:59 +0000"),
                  message("mar 1 midnight", "Fri, 1 Mar 2019 00:00:00 +0000"),
                  message("mar 15", "Fri, 15 Mar 2019 12:00:00 +0000"),
                  message("apr 1 midnight", "Mon, 1 Apr 2019 00:00:00 +0000"),
                  message("apr 1 noon", "Mon, 1 Apr 2019 12:00:00 +0000"),
                  // No Date: the postmark's Sat Mar 2 2019 counts.
                  message("postmark only", ""), message("2020", "Tue, 10 Mar 2020 08:00:00 GMT")}));
  ToolRequest request;
  request.sources = {dir / "dates.mbox"};
  const std::vector<std::string> all = subjectsIn(request);
  EXPECT_EQ(all.size(), 7u);

  struct Range {
    const char* begin;
    const char* end;
    std::vector<std::string> subjects;
  };
  const Range ranges[] = {
      {"2019-03-01 00:00:00",
       "2019-04-01 00:00:00",
       {"mar 1 midnight", "mar 15", "apr 1 midnight", "apr 1 noon", "postmark only"}},
      // The end day is taken in whole.
      {"0000-00-00 00:00:00",
       "2019-03-15 00:00:00",
       {"feb 28 late", "mar 1 midnight", "mar 15", "postmark only"}},
      // "All" for the day alone: the month's texts sort after "2019-03-00".
      {"2019-03-00 00:00:00", "2019-04-00 00:00:00", {"mar 1 midnight", "mar 15", "postmark only"}},
      {"2019-04-00 00:00:00", "9999-99-15 00:00:00", {"apr 1 midnight", "apr 1 noon", "2020"}},
      {"2021-01-01 00:00:00", "9999-99-99 00:00:00", {}},
  };
  for (const Range& range : ranges) {
    request.begin = range.begin;
    request.end = range.end;
    const ToolOutcome run = runTool(request);
    EXPECT_EQ(run.subjects(), range.subjects) << range.begin << " .. " << range.end;
    EXPECT_EQ(run.parsed, 7) << "every message read counts as parsed";
  }
  // Dates are local: in Tokyo the last second of February UTC is March 1st.
  request.begin = "2019-03-01 00:00:00";
  request.end = "2019-03-01 00:00:00";
  request.tz = "Asia/Tokyo";
  EXPECT_EQ(subjectsIn(request), (std::vector<std::string>{"feb 28 late", "mar 1 midnight"}));
}

TEST(DomailRunTest, SwitchesChooseMailboxesAndParts) {
  ScratchDir home;
  const std::string account = home / "Library/Mail/V2/Work/";
  const std::pair<const char*, const char*> boxes[] = {{"INBOX", "work inbox"},
                                                       {"Sent Messages", "work sent"},
                                                       {"Projects", "work projects"},
                                                       {"Trash", "work trash"},
                                                       {"Junk", "work junk"}};
  int number = 1;
  for (const auto& [box, subject] : boxes) {
    writeFile(account + box + ".mbox/Messages/" + std::to_string(number++) + ".emlx",
              emlx(message(subject, "Mon, 7 Jan 2019 10:00:00 +0000")));
  }
  writeFile(home / "Library/Mail/V2/Mailboxes/Saved.mbox/Messages/9.emlx",
            emlx(message("local saved", "Mon, 7 Jan 2019 10:00:00 +0000")));
  ToolRequest request;
  request.mode = ToolRequest::Accounts;
  request.home = home.path();
  request.sources = {"Work", "Mailboxes"};
  auto sorted = [&](bool all, bool trash) {
    request.allMailboxes = all;
    request.trash = trash;
    std::vector<std::string> s = subjectsIn(request);
    std::sort(s.begin(), s.end());
    return s;
  };
  using List = std::vector<std::string>;
  EXPECT_EQ(sorted(false, false), (List{"work inbox", "work sent"}));
  EXPECT_EQ(sorted(true, false), (List{"local saved", "work inbox", "work projects", "work sent"}));
  EXPECT_EQ(sorted(false, true), (List{"work inbox", "work junk", "work sent", "work trash"}));
  EXPECT_EQ(sorted(true, true).size(), 6u);

  // Mailbox mode takes exactly the listed boxes, whatever the switches say.
  request.mode = ToolRequest::Mailboxes;
  request.allMailboxes = request.trash = false;
  request.sources = {account + "Projects.mbox\n", account + "Trash.mbox\n"};
  const ToolOutcome boxesRun = runTool(request);
  EXPECT_EQ(boxesRun.subjects(), (List{"work projects", "work trash"}));
  ASSERT_EQ(boxesRun.messages.size(), 2u);
  EXPECT_EQ(boxesRun.messages[0].record.mailbox, "Work/Projects");

  // The part switches on a message with an HTML alternative and a PDF.
  const std::string mixed = message(
      "parts", "Mon, 7 Jan 2019 10:00:00 +0000",
      "--m\nContent-Type: multipart/alternative; boundary=a\n\n--a\nContent-Type: text/plain\n\n"
      "plain words\n--a\nContent-Type: text/html\n\n<p>html <b>words</b></p>\n--a--\n--m\n"
      "Content-Type: application/pdf; name=report.pdf\nContent-Transfer-Encoding: base64\n\n"
      "JVBERi0xLjQK\n--m--\n",
      "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n");
  writeFile(home / "parts.mbox", mbox({mixed}));
  request.mode = ToolRequest::Mbox;
  request.sources = {home / "parts.mbox"};
  for (const bool attachments : {false, true}) {
    for (const bool html : {false, true}) {
      request.attachments = attachments;
      request.htmlParts = html;
      const ToolOutcome run = runTool(request);
      ASSERT_EQ(run.messages.size(), 1u);
      const StoredRecord& r = run.messages[0].record;
      EXPECT_EQ(r.body, "plain words");
      std::vector<std::string> names;
      for (const StoredRecord::Attachment& a : r.attachments) {
        names.push_back(a.filename + " " + a.encoding);
      }
      List expected;
      if (html) {
        expected.push_back("part-1.2.html 8bit");
      }
      if (attachments) {
        expected.push_back("report.pdf base64");
      }
      EXPECT_EQ(names, expected);
      EXPECT_EQ(run.attachmentStatuses > 0, attachments || html);
      if (attachments) {
        EXPECT_EQ(r.attachments.back().bytes(), "%PDF-1.4\n");
      }
    }
  }
  // Without the raw switch there is no raw file at all.
  request.raw = false;
  EXPECT_EQ(runTool(request).messages.size(), 1u);
}

TEST(DomailRunTest, MessageTextNeverEndsARecordEarly) {
  const std::string lines =
      "first line\nENDOFBODY:\ntext then ENDOFBODY:\nENDOFEMAIL: not yet\nENDATTACH:\n"
      "ENDATTACHMENTS:\nRAW: like a tag\nENDOFRAW:\nlast line\n";
  const std::string tricky =
      message("tricky", "Mon, 7 Jan 2019 10:00:00 +0000",
              "--m\nContent-Type: text/plain\n\n" + lines +
                  "--m\nContent-Type: text/plain; name=notes.txt\n"
                  "Content-Disposition: attachment\n\n" +
                  lines + "--m--\n",
              "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=m\n");
  ScratchDir dir;
  writeFile(dir / "tricky.mbox", mbox({tricky, message("next", "Mon, 7 Jan 2019 11:00:00 +0000")}));
  ToolRequest request;
  request.sources = {dir / "tricky.mbox"};
  const ToolOutcome run = runTool(request);
  ASSERT_EQ(run.messages.size(), 2u);
  EXPECT_EQ(run.faults, 0);
  // The reader gets every line; the guards add one blank where a line would end the record.
  const std::string guarded =
      "first line\nENDOFBODY: \ntext then ENDOFBODY: \n ENDOFEMAIL: not yet\nENDATTACH: \n"
      "ENDATTACHMENTS:\nRAW: like a tag\nENDOFRAW:\nlast line";
  const StoredRecord& r = run.messages[0].record;
  EXPECT_EQ(r.body, guarded);
  ASSERT_EQ(r.attachments.size(), 1u);
  EXPECT_EQ(r.attachments[0].filename, "notes.txt");
  EXPECT_EQ(r.attachments[0].blob, guarded + "\n");
  // In the raw file only the lines that the raw reader would skip or stop at get a blank.
  std::string source = tricky;
  for (const std::string line : {"\nRAW: like a tag\n", "\nENDOFRAW:\n"}) {
    for (std::size_t at = source.find(line); at != std::string::npos;
         at = source.find(line, at + line.size())) {
      source.insert(at + 1, " ");
    }
  }
  EXPECT_EQ(run.messages[0].raw, source);
  EXPECT_EQ(run.messages[1].record.subject, "next");
}

TEST(DomailRunTest, AnnouncementsAreAlwaysAnswerable) {
  ScratchDir dir;
  // A mailbox file named "attachment" and a message without a subject would announce
  // "...attachment\n", which the application takes for a status and never answers.
  writeFile(dir / "attachment",
            mbox({"From: a@example.com\nDate: Mon, 7 Jan 2019 10:00:00 +0000\n\nno subject\n",
                  message("Looking for email", "Mon, 7 Jan 2019 10:00:00 +0000"),
                  message(std::string(5000, 'x'), "Mon, 7 Jan 2019 10:00:00 +0000"),
                  message("Gr\xFC\xDF"
                          "e in Latin-1",
                          "Mon, 7 Jan 2019 10:00:00 +0000")}));
  ToolRequest request;
  request.sources = {dir / "attachment"};
  const ToolOutcome run = runTool(request);
  ASSERT_EQ(run.messages.size(), 4u) << "every message was announced and answered";
  EXPECT_EQ(run.faults, 0);
  for (const AnnouncedMessage& m : run.messages) {
    EXPECT_LE(m.announcement.size(), 2001u) << "one atomic pipe write";
    EXPECT_TRUE(m.announcement.starts_with(dir / "attachment\n"));
  }
  EXPECT_EQ(run.messages[3].record.subject, "Grüße in Latin-1");
  EXPECT_EQ(run.messages[2].record.subject.size(), 5000u) << "the record keeps it whole";
}

// Starts the tool on a five-message mbox and reads its first announcement.
struct StartedRun {
  ScratchDir dir;
  DomailDriver driver{domailPath()};
  StartedRun() {
    std::vector<std::string> messages;
    for (int i = 0; i < 5; ++i) {
      messages.push_back(message("m" + std::to_string(i), "Mon, 7 Jan 2019 10:00:00 +0000"));
    }
    writeFile(dir / "five.mbox", mbox(messages));
    ToolRequest request;
    request.sources = {dir / "five.mbox"};
    EXPECT_TRUE(driver.start(toolArguments(request, dir / "a.log")));
    EXPECT_TRUE(driver.nextAnnouncement().has_value());
  }
  std::string log() { return readFile(dir / "a.log"); }
};

TEST(DomailRunTest, EndOfInputSignalsAndAClosedOutputEndTheRunCleanly) {
  {
    StartedRun run;
    run.driver.closeInput();
    EXPECT_EQ(run.driver.wait(30000), 0);
    EXPECT_EQ(run.log(), "PARSED: 1\n");
  }
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) {
    StartedRun run;
    ASSERT_TRUE(run.driver.signal(signal));
    EXPECT_EQ(run.driver.wait(30000), 0) << "signal " << signal;
    EXPECT_EQ(run.log(), "PARSED: 1\n") << "signal " << signal;
    // The message file still holds the whole record of the announced message.
    EXPECT_TRUE(StoredRecord::read(readFile(run.dir / "a.tmp")).ended);
  }
  {
    StartedRun run;
    run.driver.answer();
    ASSERT_TRUE(run.driver.nextAnnouncement().has_value());
    run.driver.answer();
    run.driver.closeOutput();  // the application is gone
    EXPECT_EQ(run.driver.wait(30000), 0);
    EXPECT_EQ(run.log(), "PARSED: 3\n");
  }
}

TEST(DomailRunTest, AMalformedCommandLineIsRefused) {
  ScratchDir dir;
  ToolRequest request;
  request.sources = {dir / "none.mbox"};
  std::vector<std::string> good = toolArguments(request, dir / "a.log");
  const std::vector<std::vector<std::string>> bad = {
      std::vector<std::string>(good.begin(), good.begin() + 9),  // too few
      [&] {
        auto a = good;
        a[3] = "yes";
        return a;
      }(),  // a switch
      [&] {
        auto a = good;
        a[8] = "2019-03-01";
        return a;
      }(),  // a date
  };
  for (const std::vector<std::string>& arguments : bad) {
    DomailDriver driver(domailPath());
    ASSERT_TRUE(driver.start(arguments));
    EXPECT_FALSE(driver.nextAnnouncement().has_value());
    EXPECT_EQ(driver.wait(30000), 2);
  }
  EXPECT_FALSE(fs::exists(dir / "a.log"));
  DomailDriver driver(domailPath());
  ASSERT_TRUE(driver.start(good));
  EXPECT_EQ(driver.wait(30000), 0);
  EXPECT_EQ(readFile(dir / "a.log"), "INVALID: " + dir / "none.mbox" + "\nPARSED: 0\n");
}

}  // namespace
}  // namespace quillery::tools::test
