#include "domail/CharsetDecoder.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

#include "common/AsciiText.h"
#include "common/Utf8Text.h"

namespace quillery::tools {
namespace {

const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);
constexpr std::size_t kMaxConverters = 32;

// windows-1252 0x80..0x9F; the five undefined bytes keep their C1 code points.
constexpr char16_t kWindows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

struct Alias {
  const char* label;
  const char* name;
};

// Labels read as UTF-8-else-windows-1252 map to "", the rest to the widest iconv superset.
constexpr Alias kAliases[] = {
    {"", ""},
    {"us-ascii", ""},
    {"ascii", ""},
    {"ansi_x3.4-1968", ""},
    {"iso-8859-1", ""},
    {"iso8859-1", ""},
    {"iso_8859-1", ""},
    {"iso-8859-1-windows-3.1-latin-1", ""},
    {"latin1", ""},
    {"latin-1", ""},
    {"l1", ""},
    {"windows-1252", ""},
    {"cp1252", ""},
    {"x-cp1252", ""},
    {"utf-8", ""},
    {"utf8", ""},
    {"unicode-1-1-utf-8", ""},
    {"x-unknown", ""},
    {"unknown", ""},
    {"unknown-8bit", ""},
    {"x-user-defined", ""},
    {"default", ""},
    {"8bit", ""},
    {"shift_jis", "CP932"},
    {"shift-jis", "CP932"},
    {"sjis", "CP932"},
    {"x-sjis", "CP932"},
    {"ms_kanji", "CP932"},
    {"csshiftjis", "CP932"},
    {"windows-31j", "CP932"},
    {"cp932", "CP932"},
    {"gb2312", "GB18030"},
    {"gbk", "GB18030"},
    {"x-gbk", "GB18030"},
    {"euc-cn", "GB18030"},
    {"cp936", "GB18030"},
    {"chinese", "GB18030"},
    {"csgb2312", "GB18030"},
    {"euc-kr", "CP949"},
    {"ks_c_5601-1987", "CP949"},
    {"ks_c_5601", "CP949"},
    {"ksc5601", "CP949"},
    {"korean", "CP949"},
    {"big5", "CP950"},
    {"big-5", "CP950"},
    {"x-x-big5", "CP950"},
    {"euc-jp", "EUC-JP-MS"},
    {"x-euc-jp", "EUC-JP-MS"},
    {"iso-8859-8-i", "ISO-8859-8"},
    {"iso-8859-6-i", "ISO-8859-6"},
    {"macintosh", "MACINTOSH"},
    {"mac", "MACINTOSH"},
    {"x-mac-roman", "MACINTOSH"},
    {"unicode-1-1-utf-7", "UTF-7"},
};

// Encodings whose bytes do not stand for themselves when they happen to be ASCII.
bool asciiCompatible(std::string_view name) {
  for (std::string_view prefix : {"UTF-16", "UTF-32", "UCS-", "ISO-2022", "UTF-7", "HZ"}) {
    if (name.starts_with(prefix)) {
      return false;
    }
  }
  return true;
}

std::size_t validSequenceLength(const unsigned char* p, std::size_t left) {
  const unsigned char c = p[0];
  if (c < 0x80) {
    return 1;
  }
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (c >= 0xC2 && c <= 0xDF) {
    length = 2;
  } else if (c >= 0xE0 && c <= 0xEF) {
    length = 3;
    low = c == 0xE0 ? 0xA0 : 0x80;
    high = c == 0xED ? 0x9F : 0xBF;
  } else if (c >= 0xF0 && c <= 0xF4) {
    length = 4;
    low = c == 0xF0 ? 0x90 : 0x80;
    high = c == 0xF4 ? 0x8F : 0xBF;
  } else {
    return 0;
  }
  if (left < length || p[1] < low || p[1] > high) {
    return 0;
  }
  for (std::size_t i = 2; i < length; ++i) {
    if (p[i] < 0x80 || p[i] > 0xBF) {
      return 0;
    }
  }
  return length;
}

// How many bytes from `p` on are ASCII, eight at a time where it can.
std::size_t asciiPrefix(const char* p, std::size_t size) {
  std::size_t i = 0;
  for (; i + 8 <= size; i += 8) {
    std::uint64_t word;
    std::memcpy(&word, p + i, 8);
    if (word & 0x8080808080808080ull) {
      break;
    }
  }
  while (i < size && static_cast<unsigned char>(p[i]) < 0x80) {
    ++i;
  }
  return i;
}

// JIS X 0213 plane 1 contains JIS X 0208 and the NEC row 13 (circled digits, units) that
// Japanese mailers put into ISO-2022-JP; strict ISO-2022-JP rejects those.
std::string withJisX0213Escapes(std::string_view bytes) {
  std::string out;
  out.reserve(bytes.size() + 16);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    if (bytes[i] == '\x1b' && i + 2 < bytes.size() && bytes[i + 1] == '$' &&
        (bytes[i + 2] == 'B' || bytes[i + 2] == '@')) {
      out += "\x1b$(Q";
      i += 2;
    } else {
      out += bytes[i];
    }
  }
  return out;
}

}  // namespace

CharsetDecoder::~CharsetDecoder() {
  closeAll();
}

void CharsetDecoder::closeAll() {
  for (auto& [name, cd] : converters_) {
    if (cd != kNoConverter) {
      iconv_close(cd);
    }
  }
  converters_.clear();
}

bool CharsetDecoder::isAscii(std::string_view bytes) {
  return asciiPrefix(bytes.data(), bytes.size()) == bytes.size();
}

bool CharsetDecoder::isValidUtf8(std::string_view bytes) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  std::size_t i = 0;
  while (i < bytes.size()) {
    i += asciiPrefix(bytes.data() + i, bytes.size() - i);
    if (i == bytes.size()) {
      break;
    }
    const std::size_t length = validSequenceLength(p + i, bytes.size() - i);
    if (length == 0) {
      return false;
    }
    i += length;
  }
  return true;
}

void CharsetDecoder::appendWindows1252(std::string_view bytes, std::string& out) {
  for (char ch : bytes) {
    const auto c = static_cast<unsigned char>(ch);
    if (c < 0x80) {
      out += ch;
    } else if (c < 0xA0) {
      utf8::appendCodePoint(kWindows1252High[c - 0x80], out);
    } else {
      utf8::appendCodePoint(c, out);
    }
  }
}

void CharsetDecoder::appendLenientUtf8(std::string_view bytes, std::string& out) {
  const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
  std::size_t i = 0;
  while (i < bytes.size()) {
    const std::size_t run = i + asciiPrefix(bytes.data() + i, bytes.size() - i);
    out.append(bytes.data() + i, run - i);
    i = run;
    if (i == bytes.size()) {
      break;
    }
    const std::size_t length = validSequenceLength(p + i, bytes.size() - i);
    if (length > 0) {
      out.append(bytes.data() + i, length);
      i += length;
    } else {
      appendWindows1252(bytes.substr(i, 1), out);
      ++i;
    }
  }
}

std::string CharsetDecoder::iconvName(std::string_view label) {
  std::string lower;
  for (char c : label) {
    if (c == '*') {
      break;  // RFC 2231 language suffix
    }
    if (c == '"' || c == '\'' || c == ' ' || c == '\t') {
      continue;
    }
    lower += ascii::lower(c);
  }
  for (const Alias& alias : kAliases) {
    if (lower == alias.label) {
      return alias.name;
    }
  }
  std::string upper;
  for (char c : lower) {
    upper += (c >= 'a' && c <= 'z') ? static_cast<char>(c - 'a' + 'A') : c;
  }
  return upper;
}

iconv_t CharsetDecoder::converter(const std::string& name) {
  auto it = converters_.find(name);
  if (it == converters_.end() && converters_.size() >= kMaxConverters) {
    closeAll();  // labels made up by broken or hostile mail must not pile up
  }
  if (it == converters_.end()) {
    it = converters_.emplace(name, iconv_open("UTF-8", name.c_str())).first;
  }
  if (it->second != kNoConverter) {
    iconv(it->second, nullptr, nullptr, nullptr, nullptr);  // back to the initial state
  }
  return it->second;
}

void CharsetDecoder::convert(iconv_t cd, std::string_view bytes, std::string& out) {
  char buffer[4096];
  char* in = const_cast<char*>(bytes.data());
  std::size_t inLeft = bytes.size();
  while (inLeft > 0) {
    char* outPtr = buffer;
    std::size_t outLeft = sizeof buffer;
    const std::size_t result = iconv(cd, &in, &inLeft, &outPtr, &outLeft);
    const int error = errno;
    out.append(buffer, static_cast<std::size_t>(outPtr - buffer));
    if (result != static_cast<std::size_t>(-1)) {
      continue;
    }
    if (error == E2BIG) {
      continue;
    }
    utf8::appendCodePoint(0xFFFD, out);
    if (error == EINVAL) {
      break;  // cut off in the middle of a character
    }
    ++in;
    --inLeft;
  }
  char* outPtr = buffer;
  std::size_t outLeft = sizeof buffer;
  iconv(cd, nullptr, nullptr, &outPtr, &outLeft);  // flush a stateful encoding
  out.append(buffer, static_cast<std::size_t>(outPtr - buffer));
}

void CharsetDecoder::appendUtf8(std::string_view bytes, std::string_view charset,
                                std::string& out) {
  const std::string name = iconvName(charset);
  const bool compatible = asciiCompatible(name);
  const bool sevenBit = name.starts_with("ISO-2022") || name == "UTF-7" || name == "HZ";
  // 8-bit bytes in a 7-bit encoding mean the label is wrong.
  if (name.empty() || (compatible && isAscii(bytes)) || (sevenBit && !isAscii(bytes))) {
    appendLenientUtf8(bytes, out);
    return;
  }
  if (compatible && isValidUtf8(bytes)) {
    out.append(bytes);
    return;
  }
  const iconv_t cd = converter(name);
  if (cd == kNoConverter) {
    appendLenientUtf8(bytes, out);
    return;
  }
  std::string converted;
  convert(cd, bytes, converted);
  if (name.starts_with("ISO-2022-JP") && converted.find("\xEF\xBF\xBD") != std::string::npos) {
    const iconv_t wide = converter("ISO-2022-JP-3");
    if (wide != kNoConverter) {
      std::string retried;
      convert(wide, withJisX0213Escapes(bytes), retried);
      if (retried.find("\xEF\xBF\xBD") == std::string::npos) {
        converted = std::move(retried);
      }
    }
  }
  out += converted;
}

std::string CharsetDecoder::toUtf8(std::string_view bytes, std::string_view charset) {
  std::string out;
  out.reserve(bytes.size());
  appendUtf8(bytes, charset, out);
  return out;
}

}  // namespace quillery::tools
