#pragma once

#include <ctime>
#include <optional>
#include <string_view>

namespace quillery::tools {

// The "From " line that starts each message of an mbox file (the postmark). A line that
// begins with "From " after a blank line is a postmark only when the rest of it looks like
// one: a sender, of one word or several, and a date ("From a@b  Sun Jan  2 11:02:19 2022",
// "From Ann Smith <ann@b>  Sun Jan  2 11:02:19 2022" as exports write them, Gmail's
// "From 1234@xxx Wed Jan 01 10:00:00 +0000 2020"), or a single word ("From -",
// "From MAILER-DAEMON") followed by a header line. So body text such as "From Russia with
// love" stays in its message even when the next line happens to read like a header. Some
// writers (old Netscape) put no blank line before a postmark; there a postmark also needs a
// header line after it.
class MboxPostmark {
 public:
  // True when `line` (without its line end) starts with "From ".
  static bool startsLikePostmark(std::string_view line);

  // The date in a postmark line, as Unix seconds (UTC unless the line gives a numeric zone),
  // or nothing when the line carries no recognisable asctime-like date.
  static std::optional<std::time_t> date(std::string_view line);

  // True when the text after "From " is a single word (the sender only, no date).
  static bool hasBareSender(std::string_view line);

  // Whether `line` separates messages, given the line after it (empty view at end of file)
  // and whether a blank line (or the start of the file) comes before it.
  static bool isSeparator(std::string_view line, std::string_view nextLine, bool afterBlankLine);
};

}  // namespace quillery::tools
