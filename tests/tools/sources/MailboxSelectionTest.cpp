// Which mailboxes an account run reads under its two switches.
#include <gtest/gtest.h>

#include "common/MailboxSelection.h"

namespace quillery::test {
namespace {

using tools::MailboxSelection;
using tools::WalkOptions;

struct Row {
  std::vector<std::string> names;
  bool byDefault;  // read with both switches off
  bool isTrash;
};

TEST(MailboxSelectionTest, InAndSentAlwaysTrashOnlyOnRequest) {
  const std::vector<Row> rows = {
      {{"INBOX"}, true, false},
      {{"inbox"}, true, false},
      {{"Sent Messages"}, true, false},
      {{"SENT"}, true, false},
      {{"[Gmail]", "Sent Mail"}, true, false},
      {{"INBOX", "Sent"}, true, false},  // servers that keep every folder under INBOX
      {{"INBOX", "Receipts"}, false, false},
      {{"Projects", "Sent"}, false, false},
      {{"Drafts"}, false, false},
      {{"Trash"}, false, true},
      {{"Deleted Messages"}, false, true},
      {{"Junk"}, false, true},
      {{"[Gmail]", "Spam"}, false, true},
      {{"INBOX", "Trash"}, false, true},
      {{"Trash", "Old"}, false, true},
  };
  for (const Row& row : rows) {
    const std::string name =
        row.names.size() > 1 ? row.names[0] + "/" + row.names[1] : row.names[0];
    EXPECT_EQ(MailboxSelection::selected(row.names, WalkOptions{false, false}), row.byDefault)
        << name;
    EXPECT_EQ(MailboxSelection::selected(row.names, WalkOptions{true, false}), !row.isTrash)
        << name;
    EXPECT_EQ(MailboxSelection::selected(row.names, WalkOptions{false, true}),
              row.byDefault || row.isTrash)
        << name;
    EXPECT_TRUE(MailboxSelection::selected(row.names, WalkOptions{true, true})) << name;
  }
}

}  // namespace
}  // namespace quillery::test
