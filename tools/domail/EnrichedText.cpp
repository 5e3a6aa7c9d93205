#include "domail/EnrichedText.h"

#include <algorithm>

#include "common/AsciiText.h"

namespace quillery::tools {

std::string EnrichedText::toText(std::string_view text, bool richtext) {
  std::string out;
  int paramDepth = 0;
  int nofillDepth = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    const char c = text[i];
    if (c == '<') {
      if (!richtext && i + 1 < text.size() && text[i + 1] == '<') {
        if (paramDepth == 0) {
          out += '<';
        }
        i += 2;
        continue;
      }
      const std::size_t close = text.find('>', i);
      if (close == std::string_view::npos) {
        break;
      }
      const std::string command = ascii::lowered(text.substr(i + 1, close - i - 1));
      const bool closing = command.starts_with("/");
      const std::string name = closing ? command.substr(1) : command;
      const int step = closing ? -1 : 1;
      if (name == "param") {
        paramDepth = std::max(0, paramDepth + step);
      } else if (name == "nofill") {
        nofillDepth = std::max(0, nofillDepth + step);
      } else if (richtext && name == "nl" && paramDepth == 0) {
        out += '\n';
      } else if (richtext && name == "lt" && paramDepth == 0) {
        out += '<';
      }
      i = close + 1;
      continue;
    }
    if (paramDepth > 0) {
      ++i;
      continue;
    }
    if (c == '\r') {
      ++i;
      continue;
    }
    if (c == '\n' && !(nofillDepth > 0 && !richtext)) {
      std::size_t breaks = 0;
      while (i < text.size() && (text[i] == '\n' || text[i] == '\r')) {
        breaks += text[i] == '\n' ? 1 : 0;
        ++i;
      }
      if (richtext || breaks == 1) {
        out += ' ';
      } else {
        out.append(breaks - 1, '\n');
      }
      continue;
    }
    out += c;
    ++i;
  }
  return out;
}

}  // namespace quillery::tools
