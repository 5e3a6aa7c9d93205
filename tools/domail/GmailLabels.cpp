#include "domail/GmailLabels.h"

#include "common/AsciiText.h"
#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

bool isState(std::string_view label) {
  for (std::string_view state : {"Opened", "Unread", "Important", "Starred", "Archived"}) {
    if (MimeHeaders::equalsIgnoringCase(label, state)) {
      return true;
    }
  }
  constexpr std::string_view kCategory = "Category ";
  return label.size() > kCategory.size() &&
         MimeHeaders::equalsIgnoringCase(label.substr(0, kCategory.size()), kCategory);
}

}  // namespace

std::vector<std::string> GmailLabels::split(std::string_view value) {
  std::vector<std::string> labels;
  std::string label;
  bool quoted = false;
  auto finish = [&] {
    if (const std::string_view text = ascii::trimmedBlanks(label); !text.empty()) {
      labels.emplace_back(text);
    }
    label.clear();
  };
  for (std::size_t i = 0; i < value.size(); ++i) {
    const char c = value[i];
    if (quoted && c == '\\' && i + 1 < value.size()) {
      label += value[++i];
    } else if (quoted && c == '"' && i + 1 < value.size() && value[i + 1] == '"') {
      label += value[++i];
    } else if (c == '"') {
      quoted = !quoted;
    } else if (c == ',' && !quoted) {
      finish();
    } else {
      label += c;
    }
  }
  finish();
  return labels;
}

std::optional<std::string> GmailLabels::mailbox(std::string_view value) {
  for (std::string& label : split(value)) {
    if (!isState(label)) {
      return std::move(label);
    }
  }
  return std::nullopt;
}

}  // namespace quillery::tools
