#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace quillery::tools {

// What an Apple Mail .emlx file holds: the message and the dates of its property list.
struct EmlxContent {
  std::string source;  // the RFC 822 bytes, without the byte-count line and the plist
  std::optional<std::time_t> dateSent;      // plist "date-sent", Unix seconds
  std::optional<std::time_t> dateReceived;  // plist "date-received", Unix seconds
  bool truncated = false;                   // the byte count promised more than the file holds
};

// Reads the .emlx format: a first line with the message's byte count (often padded with
// blanks), the message, then an XML property list. The count is trusted when it lands on the
// plist; otherwise the plist is found by its "<?xml" opening, and a file without a plist (cut
// short, or a plain message saved as .emlx) gives everything after the count line. A file
// without a count line is read from its first byte.
class EmlxReader {
 public:
  // Parses the bytes of an .emlx file. Returns nothing when they hold no message: empty,
  // or not starting with a header field.
  static std::optional<EmlxContent> parse(std::string_view file);

  // A date of the property list under `key` ("date-sent"), given as <integer>, <real> or
  // <date> (ISO 8601, UTC), or nothing.
  static std::optional<std::time_t> plistDate(std::string_view plist, std::string_view key);
};

}  // namespace quillery::tools
