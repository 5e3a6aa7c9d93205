// Which mailboxes an account run reads under its two switches.
#include <gtest/gtest.h>

#include "common/MailboxSelection.h"

namespace quillery::test {
namespace {

using tools::MailboxSelection;
using tools::WalkOptions;

TEST(MailboxSelectionTest, InAndSentAlwaysTrashOnlyOnRequest) {
  // Whether a mailbox is read with the switches (all mailboxes, trash) off and off, on and
  // off, off and on, on and on.
  const std::pair<std::vector<std::string>, std::string> rows[] = {
      {{"INBOX"}, "YYYY"},
      {{"inbox"}, "YYYY"},
      {{"Sent Messages"}, "YYYY"},
      {{"SENT"}, "YYYY"},
      {{"[Gmail]", "Sent Mail"}, "YYYY"},
      {{"INBOX", "Sent"}, "YYYY"},  // servers that keep every folder under INBOX
      {{"INBOX", "Receipts"}, "-Y-Y"},
      {{"Projects", "Sent"}, "-Y-Y"},
      {{"Drafts"}, "-Y-Y"},
      {{"Trash"}, "--YY"},
      {{"Deleted Messages"}, "--YY"},
      {{"Junk"}, "--YY"},
      {{"[Gmail]", "Spam"}, "--YY"},
      {{"INBOX", "Trash"}, "--YY"},
      {{"Trash", "Old"}, "--YY"},
  };
  for (const auto& [names, expected] : rows) {
    std::string read;
    for (const WalkOptions options : {WalkOptions{false, false}, WalkOptions{true, false},
                                      WalkOptions{false, true}, WalkOptions{true, true}}) {
      read += MailboxSelection::selected(names, options) ? "Y" : "-";
    }
    EXPECT_EQ(read, expected) << names.front() << "/" << names.back();
  }
}

}  // namespace
}  // namespace quillery::test
