#include "domail/RunLog.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "domail/CharsetDecoder.h"

namespace quillery::tools {

RunLog::~RunLog() {
  if (fd_ >= 0) {
    ::close(fd_);
  }
}

bool RunLog::open() {
  fd_ = ::open(path_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND | O_CLOEXEC, 0600);
  return fd_ >= 0;
}

void RunLog::invalid(std::string_view path) {
  std::string text = "INVALID: ";
  CharsetDecoder::appendLenientUtf8(path, text);
  for (std::size_t i = 9; i < text.size(); ++i) {
    if (text[i] == '\n' || text[i] == '\r') {
      text[i] = ' ';
    }
  }
  line(text + "\n");
}

void RunLog::parsed(long count) {
  line("PARSED: " + std::to_string(count) + "\n");
}

void RunLog::line(const std::string& text) {
  std::size_t done = 0;
  while (fd_ >= 0 && done < text.size()) {
    const ssize_t wrote = ::write(fd_, text.data() + done, text.size() - done);
    if (wrote < 0 && errno == EINTR) {
      continue;
    }
    if (wrote <= 0) {
      return;
    }
    done += static_cast<std::size_t>(wrote);
  }
}

}  // namespace quillery::tools
