#pragma once

#include <string>
#include <string_view>

namespace quillery::tools {

// The run log that the application reads after the tool has ended: an "INVALID: <path>" line
// for every file that could not be read as mail and a last "PARSED: <n>" line. Each line is
// written at once with its own write(2), so a tool that is killed leaves whole lines. Paths
// are written as one line of valid UTF-8.
class RunLog {
 public:
  explicit RunLog(std::string path) : path_(std::move(path)) {}
  ~RunLog();
  RunLog(const RunLog&) = delete;
  RunLog& operator=(const RunLog&) = delete;

  // Creates or empties the log. False (errno set) when it cannot; the other calls then do
  // nothing.
  bool open();
  void invalid(std::string_view path);
  void parsed(long count);

 private:
  void line(const std::string& text);

  std::string path_;
  int fd_ = -1;
};

}  // namespace quillery::tools
