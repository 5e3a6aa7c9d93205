#pragma once

#include <ctime>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/FolderListing.h"
#include "common/RawMessage.h"

namespace quillery::tools {

// Reads Maildir folders, the store of mutt, notmuch, mu, Evolution, KMail and the IMAP
// synchronisers: a folder holding cur/, new/ and tmp/, in which every file of new/ and cur/ is
// one message, read byte for byte (no quoting undone; only a postmark line that some delivery
// programs put before the headers is taken off, its date kept). tmp/ holds deliveries
// still being written and is skipped, as are hidden files. Messages come in the order of their
// unique names (a file's name before its flags ":2,S", ";2," or "!2," where a file system
// forbids ":"), which begin with the delivery time. A message that a mail client moves from
// new/ to cur/ or renames (its flags changed) while the walk runs is found under its new name
// and delivered once; one deleted meanwhile is passed over. A file that is not mail (it does
// not open with a header field) or cannot be read is named to `invalid`, and the reading goes
// on. Every read returns false as soon as `message` returns false.
class MaildirReader {
 public:
  MaildirReader(const MessageSink& message, const InvalidSink& invalid)
      : message_(message), invalid_(invalid) {}

  // Whether a folder with these entries is a Maildir: it holds at least two of the folders
  // cur, new and tmp (an empty one is easily lost when a folder is copied).
  static bool isMaildir(const std::vector<FolderEntry>& entries);

  // The messages of the Maildir `folder`, filed under `mailbox`, then those of its Maildir++
  // subfolders in name order (".Sent", ".Archives.2019"; names in IMAP's modified UTF-7
  // decoded), each filed under `subfolderPrefix` followed by its name with "/" between the
  // levels ("Sent", "Archives/2019").
  bool read(const std::string& folder, const std::string& mailbox,
            const std::string& subfolderPrefix);

 private:
  // The messages of one Maildir, without its subfolders.
  bool readMessages(const std::string& folder, const std::string& mailbox);
  // A file's name without its flags: the same message's name in new/ and in cur/.
  static std::string_view uniqueName(std::string_view fileName);
  // The delivery time that a Maildir file name begins with ("1700000000.M1P2.host"), if any.
  static std::optional<std::time_t> deliveryTime(std::string_view fileName);

  using Listing = std::map<std::string, std::string, std::less<>>;  // unique name to path

  // The message files of new/ and then cur/, a name in cur/ winning over the same in new/.
  // Names the Maildir invalid when neither can be listed.
  Listing list(const std::string& folder, bool reportUnreadable) const;
  // Reads the file of `unique` into buffer_: at `path`, else wherever a fresh listing finds
  // it. Sets `path` to where it was read; false when it is gone or cannot be read.
  bool readFile(const std::string& folder, std::string_view unique, std::string& path,
                std::time_t& modified);
  // Takes a postmark line before the headers off buffer_ into `raw`; false when buffer_ then
  // does not open with a header field (it is not mail).
  bool takePostmark(RawMessage& raw);

  const MessageSink& message_;
  const InvalidSink& invalid_;
  std::string buffer_;
};

}  // namespace quillery::tools
