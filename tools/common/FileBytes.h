#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace quillery::tools {

// Whole-file reads for the small files of a mail store (emlx and Maildir messages, attachment
// parts).
class FileBytes {
 public:
  // Replaces `out` with the file's bytes and returns true; returns false (out unspecified;
  // errno ENOENT when there is no such file) when the file cannot be opened or read, or is not a
  // regular file. `modified`, when given, receives the file's modification time.
  static bool read(const std::string& path, std::string& out, std::time_t* modified = nullptr);

  // The file's modification time, or nothing when it cannot be examined.
  static std::optional<std::time_t> modified(const std::string& path);
};

}  // namespace quillery::tools
