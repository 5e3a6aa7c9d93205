#pragma once

#include <ctime>
#include <optional>
#include <string_view>

#include "common/RawMessage.h"

namespace quillery::tools {

// When a message was sent, as well as the message and its store can tell: the Date header;
// when that is missing or unreadable, the emlx property list's date-sent, the date of the
// newest Received header that carries one, the mbox postmark's date, the delivery time in a
// Maildir file's name, the emlx date-received, the file's modification time, and last `now`.
class MessageDate {
 public:
  // `headers` is the message's header block (the source up to the empty line).
  static std::time_t of(const RawMessage& raw, std::string_view headers, std::time_t now);

  // The date after the last ";" of the topmost Received header that has a readable one.
  static std::optional<std::time_t> newestReceived(std::string_view headers);
};

}  // namespace quillery::tools
