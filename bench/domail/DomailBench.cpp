// domail-bench: runs the parser tool over a mail corpus with a driver that answers every
// announcement at once, as the fastest possible application would, and prints messages per
// second, megabytes of mail per second and the tool's peak memory.
//
//   domail-bench DOMAIL SOURCE... [--switches ALLMB,ATTACH,HTML,TRASH,ORIG] [--no-nice]
//
// A SOURCE is what the store run's mbox mode takes: an mbox file or a folder of mail (a
// Maildir, say); megabytes count the files' bytes.
//
// The switches default to 1,1,1,0,1 (attachments, HTML parts and raw sources written: the
// most work per message). The tool runs through /usr/bin/nice as the application runs it,
// unless --no-nice asks for the caller's priority (on a machine busy with other work a niced
// tool mostly waits; its CPU time, printed too, is the steadier figure).
// bench/domail/domail-bench.sh makes the corpora with corpusgen and runs this on 20,000 messages
// as an mbox and as a Maildir, and on a 1 GB mbox.
#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "support/driver/DomailDriver.h"

namespace fs = std::filesystem;

int main(int argc, char** argv) {
  std::vector<std::string> mboxes;
  std::string switches = "1,1,1,0,1";
  bool nice = true;
  for (int i = 2; i < argc; ++i) {
    if (std::string(argv[i]) == "--switches" && i + 1 < argc) {
      switches = argv[++i];
    } else if (std::string(argv[i]) == "--no-nice") {
      nice = false;
    } else {
      mboxes.push_back(argv[i]);
    }
  }
  if (argc < 3 || mboxes.empty() || switches.size() != 9) {
    std::fprintf(stderr,
                 "usage: domail-bench DOMAIL SOURCE... [--switches A,B,C,D,E] [--no-nice]\n");
    return 2;
  }
  std::uintmax_t bytes = 0;
  for (const std::string& mbox : mboxes) {
    std::error_code ec;
    if (fs::is_directory(mbox, ec)) {
      for (const fs::directory_entry& entry : fs::recursive_directory_iterator(mbox, ec)) {
        bytes += entry.is_regular_file() ? entry.file_size() : 0;
      }
    } else {
      bytes += fs::file_size(mbox, ec);
    }
    if (ec) {
      std::fprintf(stderr, "domail-bench: cannot read %s\n", mbox.c_str());
      return 1;
    }
  }
  const std::string work = (fs::temp_directory_path() / "domail-bench").string();
  fs::create_directories(work);
  // allmb, attach, html, trash, mboxMode, orig, mailboxes, begin, end, sources
  std::vector<std::string> arguments = {work + "/bench.db.log", switches.substr(0, 1),
                                        switches.substr(2, 1),  switches.substr(4, 1),
                                        switches.substr(6, 1),  "1",
                                        switches.substr(8, 1),  "0",
                                        "0000-00-00 00:00:00",  "9999-99-99 00:00:00"};
  arguments.insert(arguments.end(), mboxes.begin(), mboxes.end());

  quillery::test::DomailDriver driver(argv[1], nice);
  const auto start = std::chrono::steady_clock::now();
  if (!driver.start(arguments)) {
    std::perror("domail-bench: cannot start the tool");
    return 1;
  }
  long messages = 0;
  while (driver.nextAnnouncement()) {
    ++messages;
    driver.answer();
  }
  const int status = driver.wait();
  const double seconds =
      std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
  rusage usage{};
  getrusage(RUSAGE_CHILDREN, &usage);
  fs::remove_all(work);
  // CPU time shows the tool's own cost even on a machine busy with other work.
  const double cpu = static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
                     static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
  std::printf(
      "%ld messages, %.1f MB in %.2f s: %.0f messages/s, %.1f MB/s; domail used %.2f s "
      "of CPU (%.0f messages per CPU second); peak memory of domail %.1f MB; exit "
      "status %d\n",
      messages, static_cast<double>(bytes) / 1e6, seconds, messages / seconds,
      static_cast<double>(bytes) / 1e6 / seconds, cpu, messages / cpu,
      static_cast<double>(usage.ru_maxrss) / 1024.0, status);
  return status == 0 && !driver.timedOut() ? 0 : 1;
}
