#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quillery::tools {

// Just enough header reading for the mail stores' own needs (part structure, Content-Length):
// no decoding of encoded words, names compared without regard to case.
class MimeHeaders {
 public:
  // Where the header block of `entity` ends: the offset of the first byte after the empty
  // line (LF or CRLF) that closes it, or entity.size() when there is no empty line.
  static std::size_t headerEnd(std::string_view entity);

  // The unfolded value of the first field called `name` in `headers` (leading and trailing
  // blanks removed), or nothing when the field is absent.
  static std::optional<std::string> value(std::string_view headers, std::string_view name);

  // A parameter of a structured value such as Content-Type ("boundary", "name"), quotes
  // removed; nothing when absent.
  static std::optional<std::string> parameter(std::string_view value, std::string_view name);

  // The value's leading token in lower case ("multipart/mixed" from a Content-Type).
  static std::string mediaType(std::string_view value);

  // True when `line` looks like the first line of a header field ("Name: value"): printable
  // characters without blanks up to a colon.
  static bool isFieldLine(std::string_view line);

  // True when `entity` opens with a header field as mail parsers read one: a name of bytes
  // that are neither blanks, control characters nor a colon, optional blanks, then a colon
  // ("Subject:", the old "Subject :", 8-bit names). Text that does not is no header block.
  static bool startsWithField(std::string_view entity);

  static bool equalsIgnoringCase(std::string_view a, std::string_view b);
};

}  // namespace quillery::tools
