#pragma once

#include <string>
#include <vector>

#include "common/FolderListing.h"
#include "common/MailboxReader.h"
#include "common/MaildirReader.h"
#include "common/RawMessage.h"

namespace quillery::tools {

// A folder that the user chose for an mbox run, read for whatever mail it holds. What a
// folder is comes from what it holds, not from its name, and every folder met on the way
// down is judged again:
// - a Maildir (MaildirReader::isMaildir): its messages and its Maildir++ subfolders, then
//   its other folders (a tree of Maildirs, one inside the other);
// - an Apple Mail mailbox folder (it holds an "mbox" file, a "Messages" folder, an
//   "Info.plist" or a "table_of_contents"): its messages, then every mailbox folder inside;
// - Thunderbird's own folder (~/.thunderbird, holding "profiles.ini"): its profiles only;
// - a Thunderbird profile (a "prefs.js" beside a "Mail" or "ImapMail" folder): those two
//   folders only, never the browser's files;
// - a Thunderbird account folder (it holds ".msf" index files or ".sbd" folders): every mbox
//   file, also inside ".sbd" folders, and Maildir folders of a Maildir-format account; the
//   ".msf", ".dat", ".json", ".sqlite" and other files that are not mail are passed over
//   without a word (a file beside its own ".msf" index is a mailbox and is named invalid
//   when it is not mail);
// - any other folder: its files, each read for what it holds (an mbox file, a message saved
//   on its own such as an ".eml" file, an ".emlx" file; any other file is named invalid),
//   then its folders. Hidden files and folders are passed over everywhere.
// The MAILBOX of a message is the folder the user knows: the path of the folder below the
// chosen one (the chosen folder's own name for its own messages), ".mbox" removed; an mbox
// file's messages carry that path with the file's name after it; Maildir++ subfolders and
// Thunderbird folders are named from their Maildir or account ("Sent", "Archives/2019").
// Links are followed, but no folder is entered twice. Unreadable folders are named invalid.
class ChosenFolder {
 public:
  ChosenFolder(const MessageSink& message, const InvalidSink& invalid,
               const SearchingSink& searching);

  // Returns false as soon as `message` does (the tool was told to stop), else true.
  bool read(const std::string& folder);

 private:
  using Names = std::vector<std::string>;

  bool walk(const std::string& folder, Names& names, int depth);
  bool walkMaildir(const std::string& folder, const std::vector<FolderEntry>& entries, Names& names,
                   int depth);
  bool walkAppleMailbox(const std::string& folder, const std::string& mailbox);
  bool walkThunderbirdAccount(const std::string& folder, Names& names, int depth);
  bool walkPlain(const std::vector<FolderEntry>& entries, Names& names, int depth);
  bool walkInto(const FolderEntry& sub, Names& names, int depth);
  std::string mailboxOf(const Names& names) const;

  const InvalidSink& invalid_;
  const SearchingSink& searching_;
  MailboxReader reader_;
  MaildirReader maildirs_;
  FolderListing visited_;
  std::string chosenName_;
};

}  // namespace quillery::tools
