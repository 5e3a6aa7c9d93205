#pragma once

#include <signal.h>

namespace quillery::tools {

// The signals that end a run: SIGTERM, SIGINT, SIGHUP and SIGPIPE. Creating this object
// blocks them and receives them through a signalfd instead, so the tool stops where it
// chooses (between two messages, or while it waits for an answer) and never half way through
// a record. Writing to a closed pipe then fails with EPIPE. Create it before any thread
// starts; destroying it restores the signal mask. When the signalfd cannot be made the
// signals keep their default action (the process ends at once).
class StopSignals {
 public:
  StopSignals();
  ~StopSignals();
  StopSignals(const StopSignals&) = delete;
  StopSignals& operator=(const StopSignals&) = delete;

  // A descriptor that becomes readable when a stop signal arrives, or -1.
  int fd() const { return fd_; }
  // True once a stop signal has arrived; does not block.
  bool arrived();

 private:
  int fd_ = -1;
  bool arrived_ = false;
  sigset_t previous_{};
};

}  // namespace quillery::tools
