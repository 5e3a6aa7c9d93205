#pragma once

#include <string>

#include "common/RawMessage.h"

namespace quillery::tools {

// Delivers the messages of one mail container to the walk's sinks, each file's messages in
// file order and the .emlx files of a Messages folder in the order of their numbers. A file
// that cannot be opened, is not mail, or breaks off with a read error is named to `invalid`
// (after whatever it gave); the reading goes on with the next file. Each read returns false
// as soon as `message` returns false.
class MailboxReader {
 public:
  MailboxReader(const MessageSink& message, const InvalidSink& invalid)
      : message_(message), invalid_(invalid) {}

  // What becomes of a file that is not mail: named invalid, or passed over in silence (in a
  // mail client's folder, beside its mailboxes, that holds indexes and settings).
  enum class NotMail { Invalid, Skip };

  // An mbox file; every message is filed under `mailbox`, or, when the file is a message
  // saved on its own (it opens with headers, not a postmark), under `savedMailbox`.
  bool readMboxFile(const std::string& path, const std::string& mailbox,
                    const std::string& savedMailbox, NotMail notMail = NotMail::Invalid);
  bool readMboxFile(const std::string& path, const std::string& mailbox) {
    return readMboxFile(path, mailbox, mailbox);
  }

  // A single file: an .emlx file (whole or partial) by its name, any other file as mbox.
  bool readFile(const std::string& path, const std::string& mailbox);

  // A mailbox folder: its "mbox" file (old layout and Apple's exported mailboxes) and the
  // .emlx files of its Messages folders. A .partial.emlx is rebuilt from its stored parts,
  // and passed over when the full .emlx of the same number is there.
  bool readMailboxFolder(const std::string& folder, const std::string& mailbox);

  // The .emlx files of one Messages folder.
  bool readMessagesFolder(const std::string& folder, const std::string& mailbox);

  // One .emlx or .partial.emlx file (the parts of a partial one are looked up beside it).
  bool readEmlxFile(const std::string& path, const std::string& mailbox);

 private:
  const MessageSink& message_;
  const InvalidSink& invalid_;
  std::string buffer_;
};

}  // namespace quillery::tools
