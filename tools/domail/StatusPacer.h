#pragma once

#include <chrono>

namespace quillery::tools {

// When the tool says "Looking for email". The application takes each read of the pipe as one
// chunk, so a status that is read together with the announcement after it would show in the
// progress text. The status is therefore said only after the tool has been silent for a
// while (searching folders, passing over messages outside the date range), at most once
// between two other chunks, and the chunk after it waits a moment so that the two are read
// apart.
class StatusPacer {
 public:
  using Clock = std::chrono::steady_clock;

  explicit StatusPacer(Clock::duration quiet = std::chrono::milliseconds(700),
                       Clock::duration settle = std::chrono::milliseconds(40))
      : quiet_(quiet), settle_(settle) {}

  // A chunk other than the searching status was written at `now`.
  void wrote(Clock::time_point now);
  // Whether to say "Looking for email" now; when true, the status counts as written.
  bool searchingDue(Clock::time_point now);
  // How long the next chunk should wait so that it is read apart from the status.
  Clock::duration settleLeft(Clock::time_point now) const;

 private:
  Clock::duration quiet_;
  Clock::duration settle_;
  Clock::time_point lastWrite_ = Clock::now();
  Clock::time_point lastStatus_{};
  bool statusSinceWrite_ = false;
};

}  // namespace quillery::tools
