#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace quillery::test {

// Plays the application's part of a store run against the real tool, for tests and
// benchmarks: starts domail (through /usr/bin/nice when it exists, with NSUnbufferedIO=YES,
// as the application does), takes every read of the tool's output as one chunk and sorts it
// with the store run's own rule (ingest::ToolChunk): a status, or the announcement of a
// message, which must be answered with "go for it" before the tool writes again.
class DomailDriver {
 public:
  // `throughNice` false starts the tool directly, at the caller's priority.
  explicit DomailDriver(std::string domailPath, bool throughNice = true)
      : domailPath_(std::move(domailPath)), throughNice_(throughNice) {}
  ~DomailDriver();
  DomailDriver(const DomailDriver&) = delete;
  DomailDriver& operator=(const DomailDriver&) = delete;

  // Starts the tool with the arguments after its own path; `environment` adds "NAME=value"
  // entries. False (errno set) when it cannot be started.
  bool start(const std::vector<std::string>& arguments,
             const std::vector<std::string>& environment = {});

  // Reads chunks until the next announcement and returns its text as the application
  // takes it (UTF-8); statuses, also those that arrived in front of it, are counted on the
  // way. Returns nothing when the tool closed its output, or when nothing came for
  // `timeoutMs` (timedOut() then says so), so a broken tool fails a test instead of hanging
  // it.
  std::optional<std::string> nextAnnouncement(int timeoutMs = 120000);
  // Answers the announcement read last.
  bool answer();
  // Whether the tool has written anything since the last announcement (it must not have,
  // before its answer). Does not block.
  bool wroteBeforeAnswer();

  void closeInput();
  // Stops reading the tool's output, as an application that has gone away.
  void closeOutput();
  bool signal(int number);
  // Waits for the tool to end and returns its exit status, or 128 + the signal that ended it.
  // A tool still running after `timeoutMs` (when not negative) is killed and -2 returned.
  int wait(int timeoutMs = -1);

  int attachmentStatuses() const { return attachmentStatuses_; }
  int searchingStatuses() const { return searchingStatuses_; }
  bool timedOut() const { return timedOut_; }
  // Chunks that were not valid UTF-8 (the application shows a placeholder for them).
  int invalidChunks() const { return invalidChunks_; }

 private:
  std::string domailPath_;
  bool throughNice_ = true;
  pid_t pid_ = -1;
  int input_ = -1;   // the tool's standard input, our write end
  int output_ = -1;  // the tool's standard output, our read end
  int attachmentStatuses_ = 0;
  int searchingStatuses_ = 0;
  int invalidChunks_ = 0;
  bool timedOut_ = false;
};

}  // namespace quillery::test
