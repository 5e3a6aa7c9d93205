#include "domail/FlowedText.h"

namespace quillery::tools {

std::string FlowedText::unflow(std::string_view text, bool delSp) {
  std::string out;
  out.reserve(text.size());
  bool joining = false;  // the previous line flows into this one
  int joinDepth = 0;
  std::size_t pos = 0;
  while (pos <= text.size()) {
    std::size_t end = text.find('\n', pos);
    const bool last = end == std::string_view::npos;
    if (last) {
      end = text.size();
    }
    std::string_view line = text.substr(pos, end - pos);
    pos = end + 1;
    if (last && line.empty()) {
      break;
    }
    int depth = 0;
    while (!line.empty() && line.front() == '>') {
      ++depth;
      line.remove_prefix(1);
    }
    if (!line.empty() && line.front() == ' ') {
      line.remove_prefix(1);  // space-stuffing
    }
    if (joining && depth != joinDepth) {
      out += '\n';  // a flowed line followed by another quote depth ends there
      joining = false;
    }
    if (!joining && depth > 0) {
      out.append(static_cast<std::size_t>(depth), '>');
      out += ' ';
    }
    const bool flowed = !line.empty() && line.back() == ' ' && line != "-- ";
    if (flowed && delSp) {
      line.remove_suffix(1);
    }
    out += line;
    joining = flowed;
    joinDepth = depth;
    if (!flowed) {
      out += '\n';
    }
    if (last) {
      break;
    }
  }
  if (joining) {
    out += '\n';
  }
  return out;
}

}  // namespace quillery::tools
