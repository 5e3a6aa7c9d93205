#pragma once

#include <string>
#include <string_view>

#include "domail/StatusPacer.h"
#include "domail/StopSignals.h"

namespace quillery::tools {

// The tool's side of the store run's pipes. Every chunk goes out in a single write(2) (the
// application takes each read as one chunk). After an announcement nothing at all is written
// until its answer, "go for it", has arrived on the input: a status chunk appended to an
// unanswered announcement would turn it into a status that is never answered. Status chunks
// are "attachment\n" (working on attachments or HTML parts) and "Looking for email" (paced
// by StatusPacer). The run must end when the input reaches its end, the output is closed,
// or a stop signal arrives; every call then returns false or does nothing.
class ApplicationChannel {
 public:
  ApplicationChannel(int input, int output, StopSignals& signals)
      : input_(input), output_(output), signals_(signals) {}

  // Writes the announcement and blocks until its answer arrives. False when the run must end.
  bool announce(std::string_view text);
  // Says "attachment\n".
  void working();
  // Says "Looking for email" when StatusPacer finds it due.
  void searching();
  // True when the run must end; does not block.
  bool stopped();

 private:
  bool write(std::string_view chunk);
  bool awaitAnswer();

  int input_;
  int output_;
  StopSignals& signals_;
  StatusPacer pacer_;
  std::string pending_;  // bytes read from the input and not yet taken as an answer
  bool ended_ = false;
};

}  // namespace quillery::tools
