#pragma once

#include <string>
#include <string_view>

#include "domail/CharsetDecoder.h"

typedef struct _GMimePart GMimePart;

namespace quillery::tools {

// The content of one MIME leaf part.
class PartContent {
 public:
  // The bytes with the transfer encoding undone. Base64 is decoded here rather than by GMime,
  // which stops at the first "=" and so loses blocks encoded one after another.
  static std::string decoded(GMimePart* part);

  // The content still in its base64 transfer encoding, or "" when it has another.
  static std::string encoded(GMimePart* part);

  // The decoded content of a text part as UTF-8, from the charset it declares (an HTML part
  // without one may declare it in a meta element), with line ends as "\n" and the control
  // characters that no reader wants (NUL among them) dropped. The second form takes the
  // bytes already decoded.
  static std::string text(GMimePart* part, CharsetDecoder& decoder);
  static std::string text(GMimePart* part, std::string_view bytes, CharsetDecoder& decoder);

  // Line ends to "\n", NUL and other control characters except tab dropped.
  static std::string cleanText(std::string_view text);
};

}  // namespace quillery::tools
