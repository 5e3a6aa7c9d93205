#include "support/driver/DomailDriver.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

#include <QByteArray>
#include <QStringDecoder>

#include "ingest/ToolChunk.h"

extern char** environ;

namespace quillery::test {

DomailDriver::~DomailDriver() {
  if (pid_ > 0) {
    ::kill(pid_, SIGKILL);
    wait();
  }
  closeInput();
  closeOutput();
}

bool DomailDriver::start(const std::vector<std::string>& arguments,
                         const std::vector<std::string>& environment) {
  int toTool[2];
  int fromTool[2];
  if (::pipe2(toTool, O_CLOEXEC) != 0) {
    return false;
  }
  if (::pipe2(fromTool, O_CLOEXEC) != 0) {
    ::close(toTool[0]);
    ::close(toTool[1]);
    return false;
  }
  std::vector<std::string> argv;
  if (throughNice_ && ::access("/usr/bin/nice", X_OK) == 0) {
    argv.push_back("/usr/bin/nice");
  }
  argv.push_back(domailPath_);
  argv.insert(argv.end(), arguments.begin(), arguments.end());
  std::vector<std::string> added = environment;
  added.push_back("NSUnbufferedIO=YES");
  std::vector<std::string> env;
  for (char** e = environ; *e; ++e) {
    const std::string_view entry(*e);
    const bool replaced = std::any_of(added.begin(), added.end(), [&](const std::string& a) {
      return entry.substr(0, entry.find('=') + 1) == a.substr(0, a.find('=') + 1);
    });
    if (!replaced) {
      env.push_back(*e);
    }
  }
  env.insert(env.end(), added.begin(), added.end());
  std::vector<char*> argvPointers;
  for (std::string& a : argv) {
    argvPointers.push_back(a.data());
  }
  argvPointers.push_back(nullptr);
  std::vector<char*> envPointers;
  for (std::string& e : env) {
    envPointers.push_back(e.data());
  }
  envPointers.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, toTool[0], STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fromTool[1], STDOUT_FILENO);
  const int error = posix_spawn(&pid_, argvPointers[0], &actions, nullptr, argvPointers.data(),
                                envPointers.data());
  posix_spawn_file_actions_destroy(&actions);
  ::close(toTool[0]);
  ::close(fromTool[1]);
  if (error != 0) {
    ::close(toTool[1]);
    ::close(fromTool[0]);
    pid_ = -1;
    errno = error;
    return false;
  }
  input_ = toTool[1];
  output_ = fromTool[0];
  return true;
}

std::optional<std::string> DomailDriver::nextAnnouncement(int timeoutMs) {
  while (output_ >= 0) {
    pollfd fd{output_, POLLIN, 0};
    const int ready = ::poll(&fd, 1, timeoutMs);
    if (ready < 0 && errno == EINTR) {
      continue;
    }
    if (ready == 0) {
      timedOut_ = true;
      return std::nullopt;
    }
    char buffer[65536];
    const ssize_t got = ::read(output_, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got <= 0) {
      return std::nullopt;
    }
    const QByteArray chunk(buffer, static_cast<int>(got));
    QStringDecoder utf8(QStringDecoder::Utf8);
    (void)utf8.decode(chunk);
    invalidChunks_ += utf8.hasError() ? 1 : 0;
    const ingest::ToolChunk sorted = ingest::ToolChunk::read(chunk);
    switch (sorted.kind) {
      case ingest::ToolChunk::Kind::AttachmentStatus:
        ++attachmentStatuses_;
        continue;
      case ingest::ToolChunk::Kind::SearchingStatus:
        ++searchingStatuses_;
        continue;
      case ingest::ToolChunk::Kind::Announcement:
        break;
    }
    const QByteArray text = sorted.announcement.toUtf8();
    if (!utf8.hasError()) {
      // What the rule stripped in front of the announcement were statuses too.
      const QByteArray stripped = chunk.left(chunk.size() - text.size());
      attachmentStatuses_ += static_cast<int>(stripped.count("attachment\n"));
      searchingStatuses_ += static_cast<int>(stripped.count("Looking for email"));
    }
    return text.toStdString();
  }
  return std::nullopt;
}

bool DomailDriver::answer() {
  constexpr std::string_view kAnswer = "go for it";
  return input_ >= 0 &&
         ::write(input_, kAnswer.data(), kAnswer.size()) == static_cast<ssize_t>(kAnswer.size());
}

bool DomailDriver::wroteBeforeAnswer() {
  if (output_ < 0) {
    return false;
  }
  pollfd fd{output_, POLLIN, 0};
  return ::poll(&fd, 1, 0) > 0 && (fd.revents & POLLIN);
}

void DomailDriver::closeInput() {
  if (input_ >= 0) {
    ::close(input_);
    input_ = -1;
  }
}

void DomailDriver::closeOutput() {
  if (output_ >= 0) {
    ::close(output_);
    output_ = -1;
  }
}

bool DomailDriver::signal(int number) {
  return pid_ > 0 && ::kill(pid_, number) == 0;
}

int DomailDriver::wait(int timeoutMs) {
  if (pid_ <= 0) {
    return -1;
  }
  int status = 0;
  for (int waited = 0;; waited += 10) {
    const pid_t done = ::waitpid(pid_, &status, timeoutMs < 0 ? 0 : WNOHANG);
    if (done == pid_) {
      break;
    }
    if (done < 0 && errno != EINTR) {
      return -1;
    }
    if (timeoutMs >= 0 && waited >= timeoutMs) {
      ::kill(pid_, SIGKILL);
      ::waitpid(pid_, &status, 0);
      pid_ = -1;
      return -2;
    }
    if (done == 0) {
      ::usleep(10000);
    }
  }
  pid_ = -1;
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

}  // namespace quillery::test
