#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// Plain text sent as format=flowed (RFC 3676), joined back into its paragraphs: a line that
// ends in a blank continues on the next line of the same quote depth (the blank is dropped
// with DelSp=yes), space-stuffing is undone, and the signature separator "-- " always ends
// its line. Quoted lines are written back with their ">" marks and one blank. Input and
// output use "\n" line ends.
class FlowedText {
 public:
  static std::string unflow(std::string_view text, bool delSp);
};

}  // namespace quillery::tools
