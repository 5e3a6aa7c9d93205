#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// Content-transfer encodings for putting a stored attachment back into its MIME part. Every
// output line ends with `eol` ("\n" or "\r\n", as the rest of the message).
class TransferEncoder {
 public:
  // Base64 in lines of 76 characters; empty input gives empty output.
  static void base64(std::string_view data, std::string_view eol, std::string& out);

  // Quoted-printable (RFC 2045): the data's line breaks (LF or CRLF) become hard breaks,
  // lines are kept under 76 characters with soft breaks, and "=", control and 8-bit bytes
  // and blanks before a line break are escaped.
  static void quotedPrintable(std::string_view data, std::string_view eol, std::string& out);
};

}  // namespace quillery::tools
