// Maildir++ folder names in IMAP's modified UTF-7, as the Maildir reader files them.
#include <gtest/gtest.h>

#include "common/ImapFolderName.h"

namespace quillery::test {
namespace {

TEST(ImapFolderNameTest, ModifiedUtf7IsDecodedAndAnythingElseKeptAsItStands) {
  const std::pair<const char*, const char*> rows[] = {
      {"Sent", "Sent"},
      {"Entw&APw-rfe", "Entwürfe"},
      {"Gesendete Objekte", "Gesendete Objekte"},
      {"Tom &- Jerry", "Tom & Jerry"},
      {"&ZeVnLIqe-", "日本語"},
      {"&2D3eAA-", "\xF0\x9F\x98\x80"},  // a character beyond 16 bits, as two halves
      {"&2D0-", "&2D0-"},                // half a character
      {"&AOQ", "&AOQ"},                  // never closed
      {"&A*Q-", "&A*Q-"},                // not the base64 alphabet
  };
  for (const auto& [name, decoded] : rows) {
    EXPECT_EQ(tools::ImapFolderName::decoded(name), decoded) << name;
  }
}

}  // namespace
}  // namespace quillery::test
