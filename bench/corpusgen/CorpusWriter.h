#pragma once

#include <cstdio>
#include <string>

#include "CorpusGenerator.h"

namespace quillery::bench {

// Writes generated messages as one mbox file (mboxrd: postmark lines with the message's
// date, body lines that begin with "From " or ">From " quoted with one more ">") and/or as
// an Apple Mail tree of .emlx files (<root>/V2/Bench@example.com/<Box>.mbox/Messages/N.emlx
// with byte count line and property list). Either output may be left out.
class CorpusWriter {
 public:
  CorpusWriter(std::string mboxPath, std::string mailRoot)
      : mboxPath_(std::move(mboxPath)), mailRoot_(std::move(mailRoot)) {}
  ~CorpusWriter();
  CorpusWriter(const CorpusWriter&) = delete;
  CorpusWriter& operator=(const CorpusWriter&) = delete;

  // Creates the outputs; false with a message in `error` when one cannot be created.
  bool open(std::string& error);
  // Appends one message; false with a message in `error` on a write failure.
  bool write(const CorpusGenerator::Message& message, std::string& error);
  // Flushes and closes; false with a message in `error` when the data did not reach the disk.
  bool close(std::string& error);

  unsigned long long mboxBytes() const { return mboxBytes_; }

 private:
  std::string mboxPath_;
  std::string mailRoot_;
  std::FILE* mbox_ = nullptr;
  unsigned long long mboxBytes_ = 0;
  long number_ = 0;
  std::string buffer_;
};

}  // namespace quillery::bench
