#pragma once

#include <optional>
#include <string>
#include <vector>

namespace quillery::tools {

// The command line that the store run gives the tool:
//   domail RUNLOG ALLMB ATTACH HTML TRASH MBOXMODE ORIG MAILBOXES BEGIN END SOURCE...
// The switches are integers (0 off, anything else on). BEGIN and END are "YYYY-MM-DD
// 00:00:00" texts in which "0000"/"9999" years and "00"/"99" months or days stand for no
// bound; they are compared with a message's DATE as text: from BEGIN on, up to the end of
// END's day (a range chosen as "up to the 31st" takes the 31st in). The sources
// are mbox files (MBOXMODE on), mailbox lines from findmail (MAILBOXES on), or account
// folder names under $HOME/Library/Mail followed by the word "Mailboxes".
struct DomailArguments {
  std::string runLog;
  bool allMailboxes = false;
  bool attachments = false;
  bool htmlParts = false;
  bool trash = false;
  bool mboxMode = false;
  bool rawSource = false;
  bool mailboxMode = false;
  std::string begin;
  std::string end;
  std::vector<std::string> sources;

  // The run log's path with its ".log" replaced by ".tmp" and ".raw" (appended when the
  // path does not end in ".log").
  std::string messageFile() const;
  std::string rawFile() const;
  // Whether a DATE text lies in the range.
  bool inRange(const std::string& date) const {
    return begin <= date && date.compare(0, kDayLength, end, 0, kDayLength) <= 0;
  }
  static constexpr std::size_t kDayLength = 10;  // "YYYY-MM-DD"
  // Whether the range excludes anything at all.
  bool rangeLimited() const;

  // Reads argv (argv[0] the program). Returns nothing and sets `error` to a message for the
  // user when the arguments are too few or a switch or date is malformed.
  static std::optional<DomailArguments> parse(int argc, const char* const* argv,
                                              std::string& error);
  static const char* usage();
};

}  // namespace quillery::tools
