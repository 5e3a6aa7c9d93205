#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// Base64 as mail carries it.
class Base64Text {
 public:
  // Decodes without ever failing: characters outside the alphabet are skipped, and "=" ends
  // the current group of four, so blocks that were encoded one after another ("QQ==QUI=")
  // decode to all their bytes. A group cut short gives the bytes its characters hold.
  static std::string decode(std::string_view text);

  // Copies base64 text line by line, without blanks and empty lines, into `out` when it holds
  // only the alphabet and "=" pads only the very end; false for anything else, which must
  // then be decoded and encoded afresh so that no stray character reaches the archive's own
  // decoder.
  static bool clean(std::string_view text, std::string& out);
};

}  // namespace quillery::tools
