#pragma once

#include <string>
#include <vector>

#include "common/RawMessage.h"

namespace quillery::tools {

// What an account run takes: by default only the In and Sent boxes of each account.
struct WalkOptions {
  bool allMailboxes = false;  // every mailbox of the chosen accounts
  bool includeTrash = false;  // also Trash, Deleted Messages, Junk, Spam
};

// Each walk hands every message it finds to `message`, in file order, one at a time (memory
// stays bounded whatever the file sizes), names every unreadable or unparseable file to
// `invalid` and goes on, and calls `searching` while it looks for files. A walk returns false
// as soon as `message` returns false (the tool was told to stop), else true.

// mbox files (a file that opens with headers is one message saved on its own, such as an
// .eml file) and folders of mail: Maildir folders, Thunderbird profiles and their account
// folders, Apple "Export Mailbox" folders (X.mbox/ holding a file "mbox") and any folder of
// such files, as ChosenFolder reads them. A chosen .emlx file is read as one message. A
// chosen file's messages are filed under its name.
bool walkMboxFiles(const std::vector<std::string>& paths, const MessageSink& message,
                   const InvalidSink& invalid, const SearchingSink& searching);

// Mailboxes exactly as findmail lists them (a trailing line end is ignored).
bool walkMailboxes(const std::vector<std::string>& mailboxLines, const MessageSink& message,
                   const InvalidSink& invalid, const SearchingSink& searching);

// Account folder names under mailRoot ($HOME/Library/Mail), the word "Mailboxes" naming the
// local mailboxes folder; which boxes are read follows the options. A folder that two names
// stand for (a version folder "V10" and "Mailboxes") is read once.
bool walkAccounts(const std::string& mailRoot, const std::vector<std::string>& accountNames,
                  const WalkOptions& options, const MessageSink& message,
                  const InvalidSink& invalid, const SearchingSink& searching);

// Every mailbox of the given account folders (and "Mailboxes"), each as a line that
// walkMailboxes accepts back, without line end. Unreadable folders are skipped.
std::vector<std::string> listMailboxes(const std::string& mailRoot,
                                       const std::vector<std::string>& accountNames);

}  // namespace quillery::tools
