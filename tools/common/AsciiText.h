#pragma once

#include <string>
#include <string_view>

// Mail syntax (header names, MIME tokens, tags, month names) is ASCII; the locale's case
// rules must not apply to it.
namespace quillery::tools::ascii {

inline char lower(char c) {
  return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowered(std::string_view s) {
  std::string out(s);
  for (char& c : out) {
    c = lower(c);
  }
  return out;
}

// The value of a hexadecimal digit, or -1.
inline int hexValue(char c) {
  if (c >= '0' && c <= '9') {
    return c - '0';
  }
  if (c >= 'A' && c <= 'F') {
    return c - 'A' + 10;
  }
  if (c >= 'a' && c <= 'f') {
    return c - 'a' + 10;
  }
  return -1;
}

}  // namespace quillery::tools::ascii
