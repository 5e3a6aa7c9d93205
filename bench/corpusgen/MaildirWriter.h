#pragma once

#include <string>

#include "CorpusGenerator.h"

namespace quillery::bench {

// Writes generated messages as a Maildir as a mail client keeps one: each message a file of
// its own, byte for byte as generated (no postmark, no quoting), named
// "<date>.M<n>P1.bench:2,S" in cur/ (every tenth, unread, without flags in new/); the INBOX at
// the top, the Sent and Archive boxes as the Maildir++ subfolders ".Sent" and ".Archive".
class MaildirWriter {
 public:
  explicit MaildirWriter(std::string root) : root_(std::move(root)) {}

  // Creates the folders; false with a message in `error` when one cannot be created.
  bool open(std::string& error);
  // Writes one message; false with a message in `error` on a write failure.
  bool write(const CorpusGenerator::Message& message, std::string& error);

 private:
  std::string root_;
  long number_ = 0;
};

}  // namespace quillery::bench
