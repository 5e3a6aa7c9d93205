#pragma once

#include <iconv.h>

#include <map>
#include <string>
#include <string_view>

namespace quillery::tools {

// Turns the bytes of mail text into UTF-8. Mail often lies about its charset, so the rules
// are: bytes that are valid UTF-8 and not plain ASCII are taken as UTF-8 whatever the label
// says; text with no label, a Latin-1 or an ASCII label is read as windows-1252 (the superset
// that mailers mean); any other label is converted with iconv, read through the widest
// superset that Linux knows (Shift_JIS as CP932, GB2312 as GB18030, EUC-KR as CP949, ...).
// A label iconv does not know counts as no label. Bytes the label cannot explain become
// U+FFFD, and the conversion goes on after them. The result is always valid UTF-8.
class CharsetDecoder {
 public:
  CharsetDecoder() = default;
  ~CharsetDecoder();
  CharsetDecoder(const CharsetDecoder&) = delete;
  CharsetDecoder& operator=(const CharsetDecoder&) = delete;

  std::string toUtf8(std::string_view bytes, std::string_view charset);
  void appendUtf8(std::string_view bytes, std::string_view charset, std::string& out);

  static bool isValidUtf8(std::string_view bytes);
  static bool isAscii(std::string_view bytes);
  // Valid UTF-8 sequences as they are, every other byte read as windows-1252.
  static void appendLenientUtf8(std::string_view bytes, std::string& out);
  static void appendWindows1252(std::string_view bytes, std::string& out);
  // The iconv name this decoder uses for a mail charset label, or "" for the labels that are
  // read as UTF-8 or windows-1252 without iconv.
  static std::string iconvName(std::string_view label);

 private:
  iconv_t converter(const std::string& name);
  void closeAll();
  void convert(iconv_t cd, std::string_view bytes, std::string& out);

  std::map<std::string, iconv_t> converters_;
};

}  // namespace quillery::tools
