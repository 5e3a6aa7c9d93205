#include "common/FileBytes.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace quillery::tools {

bool FileBytes::read(const std::string& path, std::string& out, std::time_t* modified) {
  const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) {
    return false;
  }
  struct stat info {};
  if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(fd);
    return false;
  }
  if (modified) {
    *modified = info.st_mtime;
  }
  // One byte more than the size lets the read that finds the end of file land without
  // growing the string; the size may still change under us (a file being written).
  out.resize(static_cast<std::size_t>(info.st_size) + 1);
  std::size_t done = 0;
  bool ok = true;
  for (;;) {
    if (done == out.size()) {
      out.resize(out.size() * 2);
    }
    const ssize_t got = ::read(fd, out.data() + done, out.size() - done);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      ok = false;
      break;
    }
    if (got == 0) {
      break;
    }
    done += static_cast<std::size_t>(got);
  }
  ::close(fd);
  out.resize(done);
  return ok;
}

std::optional<std::time_t> FileBytes::modified(const std::string& path) {
  struct stat info {};
  if (::stat(path.c_str(), &info) != 0) {
    return std::nullopt;
  }
  return info.st_mtime;
}

}  // namespace quillery::tools
