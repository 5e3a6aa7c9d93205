#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// Readable text from text/enriched (RFC 1896) and its ancestor text/richtext (RFC 1341),
// UTF-8 in and out. Formatting commands are dropped and the contents of <param> with them;
// "<<" stands for "<". In enriched text a lone line break is a blank and n line breaks in a
// row are n - 1 (except inside <nofill>); in richtext line breaks are blanks and <nl> breaks
// the line, <lt> is "<". An unclosed command ends the text.
class EnrichedText {
 public:
  static std::string toText(std::string_view text, bool richtext);
};

}  // namespace quillery::tools
