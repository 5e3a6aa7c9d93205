#pragma once

#include <ctime>
#include <functional>
#include <optional>
#include <string>

namespace quillery::tools {

// One message as a mail store holds it, before any MIME parsing: the exact RFC 822 source
// (emlx byte-count line and plist trailer removed, partial emlx rebuilt, mbox postmark line
// removed and mboxrd quoting undone; a Maildir or .eml file as it stands) with what the store
// knows about it beside the headers.
struct RawMessage {
  std::string source;   // the RFC 822 bytes
  std::string mailbox;  // display path: "Account/Box/Sub" without ".mbox", the mbox file's name,
                        // the folder's name as the user knows it ("Sent", "Archives/2019")
  std::string path;     // the file it came from, for announcements and INVALID lines
  // Dates the store gives, newest fallback last in the order they are tried after the
  // Date and Received headers.
  std::optional<std::time_t> plistDateSent;      // emlx plist "date-sent"
  std::optional<std::time_t> postmarkDate;       // mbox "From " line
  std::optional<std::time_t> deliveredDate;      // the time a Maildir file's name begins with
  std::optional<std::time_t> plistDateReceived;  // emlx plist "date-received"
  std::optional<std::time_t> fileModified;       // the file's modification time
  // Read from an mbox file, where a Gmail Takeout export keeps each message's labels in an
  // X-Gmail-Labels header; the label that names a place then names the mailbox.
  bool labelsNameMailbox = false;
};

// Called once per message found. Returning false stops the walk (end of input, signal).
using MessageSink = std::function<bool(RawMessage&&)>;
// Called for every file that could not be read as mail; the run goes on.
using InvalidSink = std::function<void(const std::string& path)>;
// Called while the walk searches, so the tool can say "Looking for email".
using SearchingSink = std::function<void()>;

}  // namespace quillery::tools
