#include "ToolRun.h"

#include <filesystem>
#include <sstream>

#include "support/TestEnvironment.h"
#include "support/driver/DomailDriver.h"

namespace quillery::tools::test {

namespace fs = std::filesystem;

using ::quillery::test::DomailDriver;

std::string mail(const std::string& subject, const std::string& date, const std::string& extra,
                 const std::string& body) {
  return "From: Sender <sender@example.com>\nTo: owner@example.org\nSubject: " + subject + "\n" +
         (date.empty() ? "" : "Date: " + date + "\n") + extra + "\n" +
         (body.empty() ? "Body of " + subject + ".\n" : body);
}

std::string mbox(const std::vector<std::string>& messages) {
  std::string out;
  for (const std::string& m : messages) {
    out += "From sender@example.com Sat Mar  2 12:00:00 2019\n" + m + "\n";
  }
  return out;
}

std::string record(const std::string& mailbox, const std::string& subject,
                   const std::string& date) {
  return mailbox + "|Sender <sender@example.com>|owner@example.org|" + subject + "|" + date +
         "|sender@example.com|Body of " + subject + ".";
}

std::string domailPath() {
  return quillery::test::toolPath(QStringLiteral("domail")).toStdString();
}

std::vector<std::string> toolArguments(const ToolRequest& r, const std::string& runLog) {
  std::vector<std::string> args = {runLog};
  for (const bool on : {r.allMailboxes, r.attachments, r.htmlParts, r.trash,
                        r.mode == ToolRequest::Mbox, r.raw, r.mode == ToolRequest::Mailboxes}) {
    args.push_back(on ? "1" : "0");
  }
  args.insert(args.end(), {r.begin, r.end});
  args.insert(args.end(), r.sources.begin(), r.sources.end());
  return args;
}

ToolOutcome runTool(const ToolRequest& request) {
  ScratchDir work;
  const std::string runLog = work / "archive.db.log";
  ToolOutcome outcome;
  DomailDriver driver(domailPath());
  std::vector<std::string> environment = {"TZ=" + request.tz};
  if (!request.home.empty()) {
    environment.push_back("HOME=" + request.home);
  }
  if (!driver.start(toolArguments(request, runLog), environment)) {
    return outcome;
  }
  while (std::optional<std::string> announcement = driver.nextAnnouncement()) {
    AnnouncedMessage m;
    m.announcement = *announcement;
    m.record = StoredRecord::read(readFile(work / "archive.db.tmp"));
    if (request.raw) {
      m.raw = StoredRecord::readRaw(readFile(work / "archive.db.raw"));
    }
    outcome.faults += (m.record.ended ? 0 : 1) + (driver.wroteBeforeAnswer() ? 1 : 0);
    outcome.messages.push_back(std::move(m));
    driver.answer();
  }
  outcome.faults += (driver.timedOut() ? 1 : 0) + driver.invalidChunks();
  outcome.attachmentStatuses = driver.attachmentStatuses();
  outcome.exitStatus = driver.wait(60000);
  const std::string log = readFile(runLog);
  const std::size_t parsed = log.rfind("PARSED: ");  // the last one counts
  outcome.parsed = parsed == std::string::npos ? -1 : std::stol(log.substr(parsed + 8));
  std::istringstream lines(log);
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("INVALID: ")) {
      outcome.invalid.push_back(line.substr(9));
    }
  }
  return outcome;
}

std::vector<std::string> ToolOutcome::records() const {
  std::vector<std::string> out;
  for (const AnnouncedMessage& m : messages) {
    out.push_back(m.record.whole());
  }
  return out;
}

std::string ToolOutcome::subjects() const {
  std::string out;
  for (const AnnouncedMessage& m : messages) {
    out += (&m == messages.data() ? "" : "|") + m.record.subject;
  }
  return out;
}

}  // namespace quillery::tools::test
