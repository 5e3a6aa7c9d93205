#pragma once

#include <string>
#include <string_view>

#include "domail/StatusPacer.h"
#include "domail/StopSignals.h"

namespace quillery::tools {

// The tool's side of the store run's pipes. Every chunk goes out in a single write(2) (the
// application takes each read as one chunk). After an announcement nothing at all is written
// until its answer, "go for it", has arrived on the input: a status chunk appended to an
// unanswered announcement would turn it into a status that is never answered. The tool may
// prepare the next message meanwhile and collect the answer with settle() before it touches
// the record files again. Status chunks are "attachment\n" (working on attachments or HTML
// parts; while an answer is outstanding it is held back until the answer came) and "Looking
// for email" (paced by StatusPacer; it first collects an outstanding answer). The run must
// end when the input reaches its end, the output is closed, or a stop signal arrives; every
// call then returns false or does nothing.
class ApplicationChannel {
 public:
  ApplicationChannel(int input, int output, StopSignals& signals)
      : input_(input), output_(output), signals_(signals) {}

  // Writes the announcement (after collecting any outstanding answer) and returns without
  // waiting for its own answer. False when the run must end.
  bool announce(std::string_view text);
  // Blocks until the answer to the last announcement has arrived; true at once when none is
  // outstanding. False when the run must end.
  bool settle();
  // Says "attachment\n".
  void working();
  // Says "Looking for email" when StatusPacer finds it due.
  void searching();
  // True when the run must end; does not block.
  bool stopped();

 private:
  // Blocks until `fd` is ready for `events` (or closed at the other end). False when the run
  // must end first: a stop signal, or poll failing.
  bool waitFor(int fd, short events);
  bool write(std::string_view chunk);
  bool awaitAnswer();

  int input_;
  int output_;
  StopSignals& signals_;
  StatusPacer pacer_;
  std::string pending_;       // bytes read from the input and not yet taken as an answer
  bool outstanding_ = false;  // an announcement waits for its answer
  bool heldWork_ = false;     // "attachment\n" to say once the answer came
  bool ended_ = false;
};

}  // namespace quillery::tools
