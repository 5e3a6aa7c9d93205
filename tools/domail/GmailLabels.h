#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillery::tools {

// The labels that a Gmail Takeout export keeps in a message's X-Gmail-Labels header, read
// from the decoded value: labels separated by commas; a label that holds a comma or a quote
// stands in double quotes, a quote inside doubled or after a backslash; non-ASCII labels come
// as encoded words or raw UTF-8 (both decoded before).
class GmailLabels {
 public:
  // Every label in order, blanks around it removed; empty labels are dropped.
  static std::vector<std::string> split(std::string_view value);

  // The label that names the message's mailbox: the first that names a place (Inbox, Sent,
  // Drafts, Spam, Trash, the user's own labels) rather than a state that Gmail keeps as a
  // label (Opened, Unread, Important, Starred, Archived, "Category ..."); nothing when every
  // label is a state.
  static std::optional<std::string> mailbox(std::string_view value);
};

}  // namespace quillery::tools
