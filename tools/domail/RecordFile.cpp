#include "domail/RecordFile.h"

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <vector>

namespace quillery::tools {

RecordFile::~RecordFile() {
  if (fd_ >= 0) {
    ::close(fd_);
  }
}

bool RecordFile::open() {
  fd_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  return fd_ >= 0;
}

bool RecordFile::rewrite(std::initializer_list<std::string_view> pieces) {
  if (fd_ < 0) {
    errno = EBADF;
    return false;
  }
  std::vector<iovec> vectors;
  off_t total = 0;
  for (std::string_view piece : pieces) {
    if (!piece.empty()) {
      vectors.push_back({const_cast<char*>(piece.data()), piece.size()});
      total += static_cast<off_t>(piece.size());
    }
  }
  off_t offset = 0;
  std::size_t first = 0;
  while (first < vectors.size()) {
    const int count = static_cast<int>(std::min<std::size_t>(vectors.size() - first, IOV_MAX));
    const ssize_t wrote = ::pwritev(fd_, vectors.data() + first, count, offset);
    if (wrote < 0) {
      if (errno == EINTR) {
        continue;
      }
      return false;
    }
    offset += wrote;
    // Step over what was written, partly written pieces included.
    auto left = static_cast<std::size_t>(wrote);
    while (first < vectors.size() && left >= vectors[first].iov_len) {
      left -= vectors[first].iov_len;
      ++first;
    }
    if (first < vectors.size()) {
      vectors[first].iov_base = static_cast<char*>(vectors[first].iov_base) + left;
      vectors[first].iov_len -= left;
    }
  }
  // Growing happened with the write; only a shorter record needs the cut.
  while (total < size_ && ::ftruncate(fd_, total) != 0) {
    if (errno != EINTR) {
      return false;
    }
  }
  size_ = total;
  return true;
}

}  // namespace quillery::tools
