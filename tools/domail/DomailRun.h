#pragma once

#include <ctime>
#include <string>

#include "common/RawMessage.h"
#include "domail/ApplicationChannel.h"
#include "domail/DomailArguments.h"
#include "domail/MessageConverter.h"
#include "domail/RecordFile.h"
#include "domail/RunLog.h"

namespace quillery::tools {

// One run of the tool: walks the sources that the arguments name, and for every message in
// the date range writes the message file (and with the raw switch the raw file) completely,
// announces it as "path\nsubject" and goes on to read and convert the next message while the
// application stores this one; the next message's files are written only after the answer
// came. Files that cannot be read as mail, and messages that GMime cannot read, are INVALID
// lines of the run log and the run goes on. The run ends early, cleanly and between two
// messages, when the channel says so (end of input, a stop signal, a closed output) or a
// record file cannot be written (reported on standard error). The log's last line is
// "PARSED: n", n counting the messages announced and those passed over as outside the date
// range.
class DomailRun {
 public:
  DomailRun(const DomailArguments& arguments, ApplicationChannel& channel, RecordFile& message,
            RecordFile& raw, RunLog& log, std::time_t now);

  // Returns the exit status: 0, or 1 when a record file could not be written.
  int run();

 private:
  bool onMessage(RawMessage&& raw);
  bool write(const RawMessage& raw);
  std::string mailRoot() const;

  const DomailArguments& arguments_;
  ApplicationChannel& channel_;
  RecordFile& message_;
  RecordFile& raw_;
  RunLog& log_;
  MessageConverter converter_;
  ParsedMessage parsedMessage_;
  std::string record_;
  std::string scratch_;
  long parsed_ = 0;
  bool writeFailed_ = false;
};

}  // namespace quillery::tools
