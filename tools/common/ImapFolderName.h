#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// Folder names as IMAP servers and the Maildir++ layout write them: modified UTF-7, where
// "&" opens a run of UTF-16 in a base64 alphabet with "," for "/", "-" closes it, and "&-"
// is "&" itself ("Entw&APw-rfe" is "Entwürfe").
class ImapFolderName {
 public:
  // The name in UTF-8; a name that is not valid modified UTF-7 is returned as it stands.
  static std::string decoded(std::string_view name);
};

}  // namespace quillery::tools
