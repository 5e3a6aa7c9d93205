#include "common/ImapFolderName.h"

#include <optional>

#include "common/Utf8Text.h"

namespace quillery::tools {
namespace {

int base64Value(char c) {
  if (c >= 'A' && c <= 'Z') {
    return c - 'A';
  }
  if (c >= 'a' && c <= 'z') {
    return c - 'a' + 26;
  }
  if (c >= '0' && c <= '9') {
    return c - '0' + 52;
  }
  return c == '+' ? 62 : c == ',' ? 63 : -1;
}

// The UTF-16 run between "&" and "-" as UTF-8, or nothing when it is not valid.
std::optional<std::string> decodeRun(std::string_view run) {
  std::string out;
  unsigned bits = 0;
  int count = 0;
  char16_t high = 0;
  for (char c : run) {
    const int value = base64Value(c);
    if (value < 0) {
      return std::nullopt;
    }
    bits = (bits << 6) | static_cast<unsigned>(value);
    count += 6;
    if (count < 16) {
      continue;
    }
    count -= 16;
    const auto unit = static_cast<char16_t>((bits >> count) & 0xFFFF);
    if (unit >= 0xD800 && unit < 0xDC00) {
      high = unit;
    } else if (unit >= 0xDC00 && unit < 0xE000 && high != 0) {
      utf8::appendCodePoint(0x10000 + ((char32_t(high) - 0xD800) << 10) + (unit - 0xDC00), out);
      high = 0;
    } else if (unit < 0xD800 || unit >= 0xE000) {
      utf8::appendCodePoint(unit, out);
    } else {
      return std::nullopt;
    }
  }
  if (high != 0 || out.empty()) {
    return std::nullopt;
  }
  return out;
}

}  // namespace

std::string ImapFolderName::decoded(std::string_view name) {
  std::string out;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] != '&') {
      out += name[i];
      continue;
    }
    const std::size_t end = name.find('-', i + 1);
    if (end == std::string_view::npos) {
      return std::string(name);
    }
    if (end == i + 1) {
      out += '&';
    } else if (std::optional<std::string> run = decodeRun(name.substr(i + 1, end - i - 1))) {
      out += *run;
    } else {
      return std::string(name);
    }
    i = end;
  }
  return out;
}

}  // namespace quillery::tools
