#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// Readable text from HTML (UTF-8 in, UTF-8 out), for searching and reading a message that
// has no plain text. Markup is dropped; the contents of head, script, style, title and
// comments are dropped; block elements (p, div, br, tr, li, headings, ...) end lines, table
// cells are separated by blanks and list items start with "* "; runs of white space collapse
// as a browser collapses them, except inside pre; character references (named, decimal and
// hex) are decoded, unknown ones are kept as written. At most one empty line stands between
// two paragraphs and the text has no leading or trailing empty lines. Broken markup never
// fails: an unclosed tag or comment ends the text.
class HtmlText {
 public:
  static std::string toText(std::string_view html);

  // The charset that an HTML document declares in a meta element, or "" when it declares
  // none. Only the first few kilobytes are looked at.
  static std::string declaredCharset(std::string_view html);

  // Rewrites the charset that a meta element declares to "utf-8", for a document that has
  // been converted to UTF-8; a document that declares none is left alone.
  static void declareUtf8(std::string& html);

  // Decodes one character reference at `at` ("&amp;", "&#233;", "&#xE9;") into `out` and
  // returns its length, or 0 when there is none.
  static std::size_t decodeReference(std::string_view text, std::size_t at, std::string& out);

 private:
  // Where the charset value of the first meta element that names one starts, or npos.
  static std::size_t charsetValueAt(std::string_view html);
};

}  // namespace quillery::tools
