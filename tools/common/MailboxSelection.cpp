#include "common/MailboxSelection.h"

#include <array>
#include <string_view>

#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

constexpr std::array<std::string_view, 3> kInNames = {"inbox", "in", "incoming"};
constexpr std::array<std::string_view, 6> kSentNames = {"sent messages", "sent",      "sent mail",
                                                        "sent items",    "sent-mail", "sent mails"};
constexpr std::array<std::string_view, 10> kTrashNames = {
    "trash", "deleted messages", "deleted items", "deleted", "bin",
    "junk",  "junk e-mail",      "junk mail",     "spam",    "bulk mail"};

// The first name that is not a bracketed container ("[Gmail]"), and where it stands.
std::size_t roleIndex(const std::vector<std::string>& names) {
  std::size_t i = 0;
  while (i < names.size() && names[i].starts_with("[")) {
    ++i;
  }
  return i;
}

template <std::size_t N>
bool oneOf(const std::string& name, const std::array<std::string_view, N>& list) {
  for (std::string_view candidate : list) {
    if (MimeHeaders::equalsIgnoringCase(name, candidate)) {
      return true;
    }
  }
  return false;
}

}  // namespace

bool MailboxSelection::isInOrSent(const std::vector<std::string>& names) {
  const std::size_t i = roleIndex(names);
  // Only the box itself: folders under INBOX are ordinary mailboxes, except the Sent box
  // of servers that keep every folder under INBOX ("INBOX/Sent").
  if (i + 1 == names.size()) {
    return oneOf(names[i], kInNames) || oneOf(names[i], kSentNames);
  }
  return i + 2 == names.size() && MimeHeaders::equalsIgnoringCase(names[i], "inbox") &&
         oneOf(names[i + 1], kSentNames);
}

bool MailboxSelection::isTrash(const std::vector<std::string>& names) {
  for (const std::string& name : names) {
    if (oneOf(name, kTrashNames)) {
      return true;
    }
  }
  return false;
}

bool MailboxSelection::selected(const std::vector<std::string>& names, const WalkOptions& options) {
  if (isTrash(names)) {
    return options.includeTrash;
  }
  return options.allMailboxes || isInOrSent(names);
}

}  // namespace quillery::tools
