#pragma once

#include <QTemporaryDir>
#include <ctime>
#include <string>
#include <vector>

#include "StoredRecord.h"

namespace quillery::tools::test {

// A folder of its own for one test, removed with everything in it at the end.
struct ScratchDir {
  QTemporaryDir dir;
  std::string path() const { return dir.path().toStdString(); }
  std::string operator/(const std::string& name) const { return path() + "/" + name; }
};

// Writes a file, creating its folders; sets its modification time when `modified` is given.
void writeFile(const std::string& path, const std::string& bytes, std::time_t modified = 0);
std::string readFile(const std::string& path);
// An Apple Mail .emlx file: byte count line, the message, a property list.
std::string emlx(const std::string& message);

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
