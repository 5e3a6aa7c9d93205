#include "domail/StopSignals.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <initializer_list>

namespace quillery::tools {

StopSignals::StopSignals() {
  sigset_t stops;
  sigemptyset(&stops);
  for (int signal : {SIGTERM, SIGINT, SIGHUP, SIGPIPE}) {
    sigaddset(&stops, signal);
  }
  if (sigprocmask(SIG_BLOCK, &stops, &previous_) != 0) {
    return;
  }
  fd_ = signalfd(-1, &stops, SFD_CLOEXEC | SFD_NONBLOCK);
  if (fd_ < 0) {
    sigprocmask(SIG_SETMASK, &previous_, nullptr);
  }
}

StopSignals::~StopSignals() {
  if (fd_ >= 0) {
    ::close(fd_);
    sigprocmask(SIG_SETMASK, &previous_, nullptr);
  }
}

bool StopSignals::arrived() {
  if (arrived_ || fd_ < 0) {
    return arrived_;
  }
  signalfd_siginfo info{};
  while (::read(fd_, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
    arrived_ = true;
  }
  return arrived_;
}

}  // namespace quillery::tools
