#pragma once

#include <string>
#include <string_view>
#include <vector>

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

// `s` without the blanks and tabs at either end.
inline std::string_view trimmedBlanks(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) {
    s.remove_prefix(1);
  }
  while (!s.empty() && (s.back() == ' ' || s.back() == '\t')) {
    s.remove_suffix(1);
  }
  return s;
}

// True when `s` is one or more of the digits 0 to 9.
inline bool allDigits(std::string_view s) {
  if (s.empty()) {
    return false;
  }
  for (char c : s) {
    if (c < '0' || c > '9') {
      return false;
    }
  }
  return true;
}

// The value of a run of digits (checked by the caller), or -1 when it passes 100,000 (no
// date field is that large, and the value cannot overflow).
inline int number(std::string_view digits) {
  int v = 0;
  for (char c : digits) {
    if (v > 100000) {
      return -1;
    }
    v = v * 10 + (c - '0');
  }
  return v;
}

// The pieces of `s` between the separators: n separators give n + 1 pieces, empty ones too.
inline std::vector<std::string_view> split(std::string_view s, char separator) {
  std::vector<std::string_view> parts;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= s.size(); ++i) {
    if (i == s.size() || s[i] == separator) {
      parts.push_back(s.substr(start, i - start));
      start = i + 1;
    }
  }
  return parts;
}

// `text` with every `escape` that is followed by two hexadecimal digits replaced by the byte
// they give ("=3D" in Q-encoded words, "%20" in RFC 2231 values); everything else kept.
inline std::string hexEscapesDecoded(std::string_view text, char escape) {
  std::string out;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == escape && i + 2 < text.size() && hexValue(text[i + 1]) >= 0 &&
        hexValue(text[i + 2]) >= 0) {
      out += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
      i += 2;
    } else {
      out += text[i];
    }
  }
  return out;
}

}  // namespace quillery::tools::ascii
