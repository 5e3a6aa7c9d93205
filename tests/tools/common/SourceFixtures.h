#pragma once

#include <ctime>
#include <string>
#include <vector>

#include "common/RawMessage.h"

namespace quillery::test {

// Mail-store files that the reader tests write themselves, and the walk's output collected.

// A small RFC 822 message whose Subject is "Message <i>" and whose body is `body`.
std::string numberedMessage(int i, const std::string& body = "Body text.\n");
std::vector<std::string> numberedMessages(const std::vector<int>& numbers);  // with that body

// An .emlx file: the byte-count line (the count padded with blanks to ten columns, as Apple
// Mail writes it, or `count` when given), the message, and a property list with the dates
// (none when negative; a modern trailer, or the old "Apple Computer" one when `oldTrailer`).
std::string emlx(const std::string& message, long count = -1, bool oldTrailer = false,
                 std::time_t dateSent = 1500000000, std::time_t received = 1500000100);

// Writes `bytes` to `path`, creating the folders above it, and sets its modification time
// when `modified` is given; fails the test when it cannot.
void writeFile(const std::string& path, const std::string& bytes, std::time_t modified = 0);

// The contents of a file, or empty text.
std::string readFile(const std::string& path);

// The decoded content of every leaf MIME part of `source` in order, as GMime reads it.
std::vector<std::string> decodedParts(const std::string& source);

// What a walk gave: the messages in order and the paths named as invalid.
struct Collected {
  std::vector<tools::RawMessage> messages;
  std::vector<std::string> invalid;

  tools::MessageSink sink();
  tools::InvalidSink invalidSink();
  std::vector<std::string> mailboxes() const;  // each message's mailbox, in order
  std::vector<std::string> sources() const;
};

}  // namespace quillery::test
