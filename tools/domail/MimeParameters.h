#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "domail/HeaderText.h"

namespace quillery::tools {

// The parameters of a structured header value (Content-Type, Content-Disposition) read from
// its raw text. A parameter is found without regard to case and decoded to UTF-8: RFC 2231
// forms (name*=charset'lang'%XX, name*0*=, name*1=, ... in any order) win over the plain
// form, whose value may hold RFC 2047 encoded words even inside quotes, or raw 8-bit text
// (read as the fallback charset). Broken values are read as far as they make sense: a
// missing closing quote ends at the end of the text, an unquoted value with blanks runs to
// the next semicolon.
class MimeParameters {
 public:
  explicit MimeParameters(std::string_view rawValue);

  // The value before the first semicolon in lower case ("text/plain", "attachment").
  const std::string& token() const { return token_; }
  // The parameter's value exactly as written, quotes removed; nothing when absent.
  std::optional<std::string> raw(std::string_view name) const;
  // The decoded value; nothing when absent.
  std::optional<std::string> decoded(std::string_view name, HeaderText& text,
                                     std::string_view fallbackCharset = {}) const;

 private:
  struct Parameter {
    std::string name;  // lower case, without the RFC 2231 "*n*" suffix
    int section = -1;  // continuation number, -1 without one
    bool extended = false;
    std::string value;
  };

  std::string token_;
  std::vector<Parameter> parameters_;
};

}  // namespace quillery::tools
