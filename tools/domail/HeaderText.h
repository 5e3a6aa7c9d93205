#pragma once

#include <string>
#include <string_view>

#include "domail/CharsetDecoder.h"

namespace quillery::tools {

// Header values as a reader sees them: one line of UTF-8. Folding is undone, RFC 2047
// encoded words are decoded (also where mailers wrongly put them, inside quoted strings and
// in the middle of words), the blanks between two adjacent encoded words are dropped, and
// words of one charset are joined before decoding so a character split across two words
// survives. Raw 8-bit text is read in `fallbackCharset` (the message's own text charset when
// it declares one), through CharsetDecoder's rules. Tabs, and line ends that encoded words
// carry, become blanks; other control characters are dropped; leading and trailing blanks
// are removed.
class HeaderText {
 public:
  explicit HeaderText(CharsetDecoder& decoder) : decoder_(decoder) {}

  std::string decode(std::string_view raw, std::string_view fallbackCharset = {});
  CharsetDecoder& decoder() { return decoder_; }

  // Like decode, but every decoded encoded word is written so that an address parser still
  // sees the structure: outside quotes it becomes a quoted string, inside quotes its quote
  // and backslash characters are escaped.
  std::string decodeForAddresses(std::string_view raw, std::string_view fallbackCharset = {});

  // The value's lines joined: line ends and the folding they carry removed, nothing decoded.
  static std::string unfold(std::string_view raw);
  // Tabs and line ends to blanks, other control characters dropped, blanks trimmed.
  static std::string singleLine(std::string_view text);

 private:
  std::string decodeWords(std::string_view raw, std::string_view fallbackCharset,
                          bool forAddresses);

  CharsetDecoder& decoder_;
};

}  // namespace quillery::tools
