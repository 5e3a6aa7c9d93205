#pragma once

#include <cstdint>
#include <string>

namespace quillery::archive::like_text {

// Texts read as SQLite's LIKE reads them, shared by the index's tokenizers: UTF-8 decoded into
// code points the way SQLite does (malformed sequences included), ASCII letters folded to lower
// case and nothing else folded, because LIKE ignores case for ASCII letters only. A word
// character is an ASCII letter or digit or any code point beyond ASCII.

// SQLite's table for the lead byte of a multi-byte UTF-8 sequence.
inline constexpr unsigned char kUtf8Lead[] = {
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f,
    0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x1b, 0x1c, 0x1d, 0x1e, 0x1f,
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f,
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x00, 0x01, 0x02, 0x03, 0x00, 0x01, 0x00, 0x00,
};

// The next code point, decoded exactly as LIKE decodes its operands, ASCII letters folded.
// LIKE stops at a NUL byte; the index reads on, which only adds grams and words.
inline std::uint32_t nextCodePoint(const unsigned char*& z, const unsigned char* end) {
  std::uint32_t c = *z++;
  if (c >= 0xc0) {
    c = kUtf8Lead[c - 0xc0];
    while (z != end && (*z & 0xc0) == 0x80)
      c = (c << 6) + (0x3f & *z++);
    if (c < 0x80 || (c & 0xFFFFF800) == 0xD800 || (c & 0xFFFFFFFE) == 0xFFFE)
      c = 0xFFFD;
  } else if (c >= 'A' && c <= 'Z') {
    c += 'a' - 'A';
  }
  return c;
}

inline bool isWordCharacter(std::uint32_t c) {
  return c >= 0x80 || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

// Appends a decoded word character as UTF-8. Values beyond Unicode, which only malformed
// texts decode to, are written as U+FFFD: a word then holds every piece of text that a
// pattern (always valid UTF-8) can find in it, and sometimes more, never less.
inline void appendUtf8(std::string& out, std::uint32_t c) {
  if (c > 0x10FFFF)
    c = 0xFFFD;
  if (c < 0x80) {
    out.push_back(char(c));
  } else if (c < 0x800) {
    out.push_back(char(0xc0 | (c >> 6)));
    out.push_back(char(0x80 | (c & 0x3f)));
  } else if (c < 0x10000) {
    out.push_back(char(0xe0 | (c >> 12)));
    out.push_back(char(0x80 | ((c >> 6) & 0x3f)));
    out.push_back(char(0x80 | (c & 0x3f)));
  } else {
    out.push_back(char(0xf0 | (c >> 18)));
    out.push_back(char(0x80 | ((c >> 12) & 0x3f)));
    out.push_back(char(0x80 | ((c >> 6) & 0x3f)));
    out.push_back(char(0x80 | (c & 0x3f)));
  }
}

}  // namespace quillery::archive::like_text
