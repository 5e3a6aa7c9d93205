// domail: the parser tool of a store run. See DomailArguments.h for the command line and
// DomailRun.h for what a run does; the application speaks to it over its standard input and
// output (ApplicationChannel.h) and reads the record files (RecordFormat.h) and the run log.
//
// Exit status: 0 after a run, also one that was stopped by the application or a signal;
// 1 when the record files cannot be written; 2 for a malformed command line.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <exception>

#include "domail/ApplicationChannel.h"
#include "domail/DomailArguments.h"
#include "domail/DomailRun.h"
#include "domail/RecordFile.h"
#include "domail/RunLog.h"
#include "domail/StopSignals.h"

using namespace quillery::tools;

int main(int argc, char** argv) {
  StopSignals signals;  // before anything could start a thread
  std::string error;
  const std::optional<DomailArguments> arguments = DomailArguments::parse(argc, argv, error);
  if (!arguments) {
    std::fprintf(stderr, "domail: %s\n%s", error.c_str(), DomailArguments::usage());
    return 2;
  }
  RunLog log(arguments->runLog);
  if (!log.open()) {
    std::fprintf(stderr, "domail: cannot write the run log %s: %s\n", arguments->runLog.c_str(),
                 std::strerror(errno));
  }
  RecordFile message(arguments->messageFile());
  RecordFile raw(arguments->rawFile());
  for (RecordFile* file : {&message, &raw}) {
    if ((file == &message || arguments->rawSource) && !file->open()) {
      std::fprintf(stderr, "domail: cannot write %s: %s\n", file->path().c_str(),
                   std::strerror(errno));
      log.parsed(0);
      return 1;
    }
  }
  ApplicationChannel channel(STDIN_FILENO, STDOUT_FILENO, signals);
  try {
    DomailRun run(*arguments, channel, message, raw, log, std::time(nullptr));
    return run.run();
  } catch (const std::exception& e) {
    std::fprintf(stderr, "domail: the run stopped: %s\n", e.what());
    return 1;
  }
}
