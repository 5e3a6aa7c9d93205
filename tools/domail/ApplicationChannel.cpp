#include "domail/ApplicationChannel.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace quillery::tools {
namespace {

constexpr std::string_view kAnswer = "go for it";

}  // namespace

bool ApplicationChannel::stopped() {
  if (!ended_ && signals_.arrived()) {
    ended_ = true;
  }
  return ended_;
}

bool ApplicationChannel::waitFor(int fd, short events) {
  for (;;) {
    if (stopped()) {
      return false;
    }
    pollfd fds[2] = {{fd, events, 0}, {signals_.fd(), POLLIN, 0}};
    if (::poll(fds, signals_.fd() >= 0 ? 2 : 1, -1) < 0) {
      if (errno == EINTR) {
        continue;
      }
      ended_ = true;
      return false;
    }
    if (!(fds[1].revents & POLLIN)) {
      return true;  // ready, or closed: the read or write that follows tells which
    }
    // A signal arrived: stopped() reads it.
  }
}

bool ApplicationChannel::write(std::string_view chunk) {
  while (!chunk.empty()) {
    if (!waitFor(output_, POLLOUT)) {
      return false;
    }
    const ssize_t wrote = ::write(output_, chunk.data(), chunk.size());
    if (wrote < 0 && (errno == EINTR || errno == EAGAIN)) {
      continue;
    }
    if (wrote <= 0) {
      ended_ = true;  // the application closed its end
      return false;
    }
    chunk.remove_prefix(static_cast<std::size_t>(wrote));
  }
  return true;
}

bool ApplicationChannel::awaitAnswer() {
  for (;;) {
    const std::size_t at = pending_.find(kAnswer);
    if (at != std::string::npos) {
      pending_.erase(0, at + kAnswer.size());
      return true;
    }
    if (pending_.size() > 4 * kAnswer.size()) {
      pending_.erase(0, pending_.size() - kAnswer.size());  // noise before the answer
    }
    if (!waitFor(input_, POLLIN)) {
      return false;
    }
    char buffer[64];
    const ssize_t got = ::read(input_, buffer, sizeof buffer);
    if (got < 0 && (errno == EINTR || errno == EAGAIN)) {
      continue;
    }
    if (got <= 0) {
      ended_ = true;  // end of input: the application is gone or wants no more
      return false;
    }
    pending_.append(buffer, static_cast<std::size_t>(got));
  }
}

bool ApplicationChannel::settle() {
  if (outstanding_) {
    if (!awaitAnswer()) {
      return false;
    }
    outstanding_ = false;
    if (heldWork_) {
      heldWork_ = false;
      working();
    }
  }
  return !stopped();
}

bool ApplicationChannel::announce(std::string_view text) {
  if (!settle()) {
    return false;
  }
  const StatusPacer::Clock::duration wait = pacer_.settleLeft(StatusPacer::Clock::now());
  if (wait > StatusPacer::Clock::duration::zero()) {
    std::this_thread::sleep_for(wait);
  }
  if (!write(text)) {
    return false;
  }
  pacer_.wrote(StatusPacer::Clock::now());
  outstanding_ = true;
  return true;
}

void ApplicationChannel::working() {
  if (outstanding_) {
    heldWork_ = true;
  } else if (write("attachment\n")) {
    pacer_.wrote(StatusPacer::Clock::now());
  }
}

void ApplicationChannel::searching() {
  if (settle() && pacer_.searchingDue(StatusPacer::Clock::now())) {
    write("Looking for email");
  }
}

}  // namespace quillery::tools
