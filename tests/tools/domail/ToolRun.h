#pragma once

#include <QTemporaryDir>
#include <string>
#include <vector>

#include "StoredRecord.h"
#include "common/SourceFixtures.h"

namespace quillery::tools::test {

// A folder of its own for one test, removed with everything in it at the end.
struct ScratchDir {
  QTemporaryDir dir;
  std::string path() const { return dir.path().toStdString(); }
  std::string operator/(const std::string& name) const { return path() + "/" + name; }
};

using ::quillery::test::emlx;
using ::quillery::test::readFile;
using ::quillery::test::writeFile;

inline constexpr char kDate[] = "Mon, 7 Jan 2019 10:00:00 +0000";
// A message from Sender <sender@example.com> to owner@example.org with these extra header
// lines, without a Date header when `date` is empty, its body "Body of <subject>.\n" unless
// one is given.
std::string mail(const std::string& subject, const std::string& date = kDate,
                 const std::string& extra = "", const std::string& body = "");
// The messages in an mbox file, each behind a postmark of Sat Mar 2 2019.
std::string mbox(const std::vector<std::string>& messages);
// The record of mail(subject) filed under `mailbox`, as StoredRecord::whole() gives it.
std::string record(const std::string& mailbox, const std::string& subject,
                   const std::string& date = "2019-01-07 10:00:00");

// What the application would ask of the tool.
struct ToolRequest {
  enum Mode { Mbox, Mailboxes, Accounts } mode = Mbox;
  std::vector<std::string> sources;
  bool allMailboxes = true, attachments = true, htmlParts = false, trash = false, raw = true;
  std::string begin = "0000-00-00 00:00:00";
  std::string end = "9999-99-99 00:00:00";
  std::string home;  // HOME of the tool, for account runs
  std::string tz = "UTC";
};

struct AnnouncedMessage {
  std::string announcement;
  StoredRecord record;  // the message file as it was at the announcement
  std::string raw;      // the source as the raw-file reader rebuilds it
};

struct ToolOutcome {
  std::vector<AnnouncedMessage> messages;
  long parsed = -1;                  // the run log's PARSED line
  std::vector<std::string> invalid;  // the paths of its INVALID lines
  int exitStatus = -1;
  int attachmentStatuses = 0;
  // Protocol faults that would hurt the application: output before an answer, chunks that
  // are not UTF-8, a record without its end.
  int faults = 0;
  std::string subjects() const;              // the records' subjects in order, joined by "|"
  std::vector<std::string> records() const;  // each record whole (StoredRecord::whole)
};

// Runs the real tool as the store run does, answering every announcement after reading the
// record files, in the request's time zone.
ToolOutcome runTool(const ToolRequest& request);
// The tool's arguments for a request, after the program path.
std::vector<std::string> toolArguments(const ToolRequest& request, const std::string& runLog);
std::string domailPath();

}  // namespace quillery::tools::test
