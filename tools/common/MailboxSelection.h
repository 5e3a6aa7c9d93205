#pragma once

#include <string>
#include <vector>

#include "common/MailWalker.h"

namespace quillery::tools {

// Which mailboxes of an account a walk reads. A mailbox is named by its folder names from the
// account folder down, without ".mbox" ({"INBOX"}, {"[Gmail]", "Sent Mail"}); names compare
// without regard to case. The In and Sent boxes (INBOX, "Sent Messages", Sent, "Sent Mail",
// ..., also inside a bracketed folder such as Gmail's "[Gmail]", and a Sent box inside INBOX)
// are always read; every other box only with allMailboxes; Trash, "Deleted Messages", Junk,
// Spam (and the like) and every box inside one of them only with includeTrash, whatever the
// other switch says.
class MailboxSelection {
 public:
  static bool isInOrSent(const std::vector<std::string>& names);
  static bool isTrash(const std::vector<std::string>& names);
  static bool selected(const std::vector<std::string>& names, const WalkOptions& options);
};

}  // namespace quillery::tools
