#include "domail/HtmlText.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>

#include "common/AsciiText.h"
#include "common/Utf8Text.h"
#include "domail/CharsetDecoder.h"

namespace quillery::tools {
namespace {

struct Entity {
  const char* name;
  char32_t code;
};

constexpr Entity kEntities[] = {
    {"amp", '&'},       {"lt", '<'},        {"gt", '>'},        {"quot", '"'},
    {"apos", '\''},     {"nbsp", ' '},      {"ensp", ' '},      {"emsp", ' '},
    {"thinsp", ' '},    {"zwnj", 0x200C},   {"zwj", 0x200D},    {"shy", 0xAD},
    {"copy", 0xA9},     {"reg", 0xAE},      {"trade", 0x2122},  {"hellip", 0x2026},
    {"mdash", 0x2014},  {"ndash", 0x2013},  {"lsquo", 0x2018},  {"rsquo", 0x2019},
    {"sbquo", 0x201A},  {"ldquo", 0x201C},  {"rdquo", 0x201D},  {"bdquo", 0x201E},
    {"bull", 0x2022},   {"middot", 0xB7},   {"euro", 0x20AC},   {"pound", 0xA3},
    {"yen", 0xA5},      {"cent", 0xA2},     {"curren", 0xA4},   {"sect", 0xA7},
    {"para", 0xB6},     {"deg", 0xB0},      {"plusmn", 0xB1},   {"times", 0xD7},
    {"divide", 0xF7},   {"laquo", 0xAB},    {"raquo", 0xBB},    {"lsaquo", 0x2039},
    {"rsaquo", 0x203A}, {"iexcl", 0xA1},    {"iquest", 0xBF},   {"ordf", 0xAA},
    {"ordm", 0xBA},     {"sup1", 0xB9},     {"sup2", 0xB2},     {"sup3", 0xB3},
    {"frac12", 0xBD},   {"frac14", 0xBC},   {"frac34", 0xBE},   {"micro", 0xB5},
    {"not", 0xAC},      {"macr", 0xAF},     {"acute", 0xB4},    {"cedil", 0xB8},
    {"uml", 0xA8},      {"brvbar", 0xA6},   {"dagger", 0x2020}, {"Dagger", 0x2021},
    {"permil", 0x2030}, {"larr", 0x2190},   {"rarr", 0x2192},   {"uarr", 0x2191},
    {"darr", 0x2193},   {"hearts", 0x2665}, {"check", 0x2713},  {"Agrave", 0xC0},
    {"Aacute", 0xC1},   {"Acirc", 0xC2},    {"Atilde", 0xC3},   {"Auml", 0xC4},
    {"Aring", 0xC5},    {"AElig", 0xC6},    {"Ccedil", 0xC7},   {"Egrave", 0xC8},
    {"Eacute", 0xC9},   {"Ecirc", 0xCA},    {"Euml", 0xCB},     {"Igrave", 0xCC},
    {"Iacute", 0xCD},   {"Icirc", 0xCE},    {"Iuml", 0xCF},     {"ETH", 0xD0},
    {"Ntilde", 0xD1},   {"Ograve", 0xD2},   {"Oacute", 0xD3},   {"Ocirc", 0xD4},
    {"Otilde", 0xD5},   {"Ouml", 0xD6},     {"Oslash", 0xD8},   {"Ugrave", 0xD9},
    {"Uacute", 0xDA},   {"Ucirc", 0xDB},    {"Uuml", 0xDC},     {"Yacute", 0xDD},
    {"THORN", 0xDE},    {"szlig", 0xDF},    {"agrave", 0xE0},   {"aacute", 0xE1},
    {"acirc", 0xE2},    {"atilde", 0xE3},   {"auml", 0xE4},     {"aring", 0xE5},
    {"aelig", 0xE6},    {"ccedil", 0xE7},   {"egrave", 0xE8},   {"eacute", 0xE9},
    {"ecirc", 0xEA},    {"euml", 0xEB},     {"igrave", 0xEC},   {"iacute", 0xED},
    {"icirc", 0xEE},    {"iuml", 0xEF},     {"eth", 0xF0},      {"ntilde", 0xF1},
    {"ograve", 0xF2},   {"oacute", 0xF3},   {"ocirc", 0xF4},    {"otilde", 0xF5},
    {"ouml", 0xF6},     {"oslash", 0xF8},   {"ugrave", 0xF9},   {"uacute", 0xFA},
    {"ucirc", 0xFB},    {"uuml", 0xFC},     {"yacute", 0xFD},   {"yuml", 0xFF},
};

// Elements whose content is not text for the reader.
constexpr std::string_view kSkipped[] = {"script", "style", "title", "head", "template", "xml"};
// Elements that stand apart as paragraphs, and those that only end a line.
constexpr std::string_view kParagraphs[] = {"p",  "h1", "h2",    "h3",  "h4", "h5", "h6",
                                            "ul", "ol", "table", "pre", "hr", "dl", "blockquote"};
constexpr std::string_view kLines[] = {"div",     "tr",      "li",     "dd",       "dt",
                                       "section", "article", "header", "footer",   "nav",
                                       "address", "center",  "form",   "fieldset", "caption",
                                       "figure",  "main",    "aside",  "option"};

bool isSpace(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

template <std::size_t N>
bool contains(const std::string_view (&list)[N], std::string_view name) {
  return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

bool isCharsetChar(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_' || c == '.' ||
         c == ':';
}

// Finds `needle` (lower case) in `text` from `from` without regard to case.
std::size_t findIgnoringCase(std::string_view text, std::string_view needle, std::size_t from) {
  if (needle.empty() || text.size() < needle.size()) {
    return std::string_view::npos;
  }
  for (std::size_t i = from; i + needle.size() <= text.size(); ++i) {
    std::size_t k = 0;
    while (k < needle.size() && ascii::lower(text[i + k]) == needle[k]) {
      ++k;
    }
    if (k == needle.size()) {
      return i;
    }
  }
  return std::string_view::npos;
}

// Collects text with browser-like white space and at most one empty line in a row.
class TextBuilder {
 public:
  void text(std::string_view s, bool pre) {
    for (char c : s) {
      if (pre && (c == '\n')) {
        hardBreak();
      } else if (pre && c != '\r') {
        put(c == '\t' ? ' ' : c);
      } else if (isSpace(c)) {
        pendingSpace_ = true;
      } else {
        if (pendingSpace_ && column_ > 0) {
          put(' ');
        }
        pendingSpace_ = false;
        put(c);
      }
    }
  }
  void space() { pendingSpace_ = true; }
  void lineBreak() {
    if (column_ > 0) {
      newline();
    }
    pendingSpace_ = false;
  }
  void paragraph() {
    lineBreak();
    if (!out_.empty() && newlines_ < 2) {
      newline();
    }
  }
  void hardBreak() {
    if (newlines_ < 2 && !out_.empty()) {
      newline();
    } else if (column_ > 0) {
      newline();
    }
    pendingSpace_ = false;
  }
  std::string finish() {
    while (!out_.empty() && (out_.back() == '\n' || out_.back() == ' ')) {
      out_.pop_back();
    }
    return std::move(out_);
  }

 private:
  void put(char c) {
    out_ += c;
    ++column_;
    newlines_ = 0;
  }
  void newline() {
    while (!out_.empty() && out_.back() == ' ') {
      out_.pop_back();
    }
    out_ += '\n';
    column_ = 0;
    ++newlines_;
  }

  std::string out_;
  std::size_t column_ = 0;
  int newlines_ = 0;
  bool pendingSpace_ = false;
};

struct Tag {
  std::string name;  // lower case
  bool closing = false;
  std::size_t end = 0;  // offset after '>'
};

// The tag at `at` ('<'), or an empty name when it is not markup.
Tag readTag(std::string_view html, std::size_t at) {
  Tag tag;
  std::size_t i = at + 1;
  if (i < html.size() && html[i] == '/') {
    tag.closing = true;
    ++i;
  }
  while (i < html.size() &&
         (std::isalnum(static_cast<unsigned char>(html[i])) || html[i] == ':' || html[i] == '-')) {
    tag.name += ascii::lower(html[i++]);
  }
  if (tag.name.empty() || !std::isalpha(static_cast<unsigned char>(tag.name[0]))) {
    tag.name.clear();
    return tag;
  }
  char quote = 0;
  for (; i < html.size(); ++i) {
    if (quote) {
      if (html[i] == quote) {
        quote = 0;
      }
    } else if (html[i] == '"' || html[i] == '\'') {
      quote = html[i];
    } else if (html[i] == '>') {
      break;
    }
  }
  tag.end = i < html.size() ? i + 1 : html.size();
  return tag;
}

}  // namespace

std::size_t HtmlText::decodeReference(std::string_view text, std::size_t at, std::string& out) {
  if (at >= text.size() || text[at] != '&') {
    return 0;
  }
  std::size_t i = at + 1;
  if (i < text.size() && text[i] == '#') {
    ++i;
    const bool hex = i < text.size() && (text[i] == 'x' || text[i] == 'X');
    if (hex) {
      ++i;
    }
    char32_t code = 0;
    const std::size_t digitsStart = i;
    while (i < text.size() && i - digitsStart < 8 &&
           (hex ? std::isxdigit(static_cast<unsigned char>(text[i]))
                : std::isdigit(static_cast<unsigned char>(text[i])))) {
      const char c = ascii::lower(text[i]);
      code = code * (hex ? 16 : 10) + static_cast<char32_t>(c >= 'a' ? c - 'a' + 10 : c - '0');
      ++i;
    }
    if (i == digitsStart) {
      return 0;
    }
    if (i < text.size() && text[i] == ';') {
      ++i;
    }
    if (code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
      code = 0xFFFD;
    } else if (code >= 0x80 && code < 0xA0) {
      // Mailers write windows-1252 code points as references.
      std::string one;
      CharsetDecoder::appendWindows1252(std::string(1, static_cast<char>(code)), one);
      out += one;
      return i - at;
    }
    utf8::appendCodePoint(code, out);
    return i - at;
  }
  const std::size_t nameStart = i;
  while (i < text.size() && i - nameStart < 10 &&
         std::isalnum(static_cast<unsigned char>(text[i]))) {
    ++i;
  }
  const std::string_view name = text.substr(nameStart, i - nameStart);
  for (const Entity& entity : kEntities) {
    if (name == entity.name) {
      utf8::appendCodePoint(entity.code, out);
      return (i < text.size() && text[i] == ';') ? i + 1 - at : i - at;
    }
  }
  return 0;
}

std::string HtmlText::declaredCharset(std::string_view html) {
  const std::size_t at = charsetValueAt(html);
  if (at == std::string_view::npos) {
    return {};
  }
  std::size_t end = at;
  while (end < html.size() && isCharsetChar(html[end])) {
    ++end;
  }
  return std::string(html.substr(at, end - at));
}

void HtmlText::declareUtf8(std::string& html) {
  const std::size_t at = charsetValueAt(html);
  if (at == std::string::npos) {
    return;
  }
  std::size_t end = at;
  while (end < html.size() && isCharsetChar(html[end])) {
    ++end;
  }
  html.replace(at, end - at, "utf-8");
}

std::size_t HtmlText::charsetValueAt(std::string_view html) {
  const std::string_view head = html.substr(0, 4096);
  std::size_t meta = findIgnoringCase(head, "<meta", 0);
  while (meta != std::string_view::npos) {
    const std::size_t close = head.find('>', meta);
    const std::string_view tag =
        head.substr(meta, close == std::string_view::npos ? head.size() - meta : close - meta);
    const std::size_t at = findIgnoringCase(tag, "charset", 0);
    if (at != std::string_view::npos) {
      std::size_t i = at + 7;
      while (i < tag.size() &&
             (isSpace(tag[i]) || tag[i] == '=' || tag[i] == '"' || tag[i] == '\'')) {
        ++i;
      }
      if (i < tag.size() && isCharsetChar(tag[i])) {
        return meta + i;
      }
    }
    meta = findIgnoringCase(head, "<meta", meta + 5);
  }
  return std::string_view::npos;
}

namespace {

// The text between two tags with its character references decoded.
void appendDecoded(std::string_view html, std::size_t from, std::size_t to, std::string& out) {
  out.clear();
  for (std::size_t k = from; k < to;) {
    const std::size_t stop = std::min(html.find('&', k), to);
    out.append(html.substr(k, stop - k));
    if (stop == to) {
      break;
    }
    const std::size_t used = HtmlText::decodeReference(html.substr(0, to), stop, out);
    if (used == 0) {
      out += '&';
    }
    k = stop + std::max<std::size_t>(used, 1);
  }
}

// What an element does to the text around it.
void applyTag(const Tag& tag, TextBuilder& out, int& preDepth) {
  if (tag.name == "br") {
    out.hardBreak();
  } else if (tag.name == "pre") {
    preDepth = std::max(0, preDepth + (tag.closing ? -1 : 1));
    out.paragraph();
  } else if (contains(kParagraphs, tag.name)) {
    out.paragraph();
  } else if (contains(kLines, tag.name)) {
    out.lineBreak();
    if (tag.name == "li" && !tag.closing) {
      out.text("* ", false);
    }
  } else if (tag.name == "td" || tag.name == "th") {
    out.space();
  }
}

// A no-break space reads and searches as a blank.
std::string withPlainSpaces(const std::string& text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\xC2' && at + 1 < text.size() && text[at + 1] == '\xA0') {
      plain += ' ';
      ++at;
    } else {
      plain += text[at];
    }
  }
  return plain;
}

}  // namespace

std::string HtmlText::toText(std::string_view html) {
  TextBuilder out;
  int preDepth = 0;
  std::size_t i = 0;
  std::string decoded;
  while (i < html.size()) {
    const std::size_t lt = html.find('<', i);
    appendDecoded(html, i, lt == std::string_view::npos ? html.size() : lt, decoded);
    out.text(decoded, preDepth > 0);
    if (lt == std::string_view::npos) {
      break;
    }
    if (html.substr(lt, 4) == "<!--") {
      const std::size_t end = html.find("-->", lt + 4);
      i = end == std::string_view::npos ? html.size() : end + 3;
      continue;
    }
    if (lt + 1 < html.size() && (html[lt + 1] == '!' || html[lt + 1] == '?')) {
      const std::size_t end = html.find('>', lt);
      i = end == std::string_view::npos ? html.size() : end + 1;
      continue;
    }
    const Tag tag = readTag(html, lt);
    if (tag.name.empty()) {
      out.text("<", preDepth > 0);
      i = lt + 1;
      continue;
    }
    i = tag.end;
    if (!tag.closing && contains(kSkipped, tag.name)) {
      const std::size_t close = findIgnoringCase(html, "</" + tag.name, i);
      if (close != std::string_view::npos) {
        i = readTag(html, close).end;
      } else if (tag.name != "head") {
        i = html.size();  // an unclosed script or style hides the rest
      }
      continue;
    }
    applyTag(tag, out, preDepth);
  }
  return withPlainSpaces(out.finish());
}

}  // namespace quillery::tools
