#pragma once

#include <ctime>
#include <optional>
#include <string>

namespace quillery::tools {

// Whole-file reads for the small files of a mail store (emlx messages, attachment parts).
class FileBytes {
 public:
  // Replaces `out` with the file's bytes and returns true; returns false (out unspecified)
  // when the file cannot be opened or read, or is not a regular file.
  static bool read(const std::string& path, std::string& out);

  // The file's modification time, or nothing when it cannot be examined.
  static std::optional<std::time_t> modified(const std::string& path);
};

}  // namespace quillery::tools
