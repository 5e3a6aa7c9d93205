// The tool's own plumbing on real pipes and files: the channel's rule that nothing follows an
// unanswered announcement, the record files rewritten in place, the run log's lines and the
// record files' paths that the command line gives.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ToolRun.h"
#include "domail/ApplicationChannel.h"
#include "domail/DomailArguments.h"
#include "domail/RecordFile.h"
#include "domail/RunLog.h"

namespace quillery::tools {
namespace {

using test::readFile;
using test::ScratchDir;

// Both ends of the two pipes between the application and the tool.
struct Pipes {
  int toTool[2] = {-1, -1};
  int fromTool[2] = {-1, -1};
  Pipes() {
    EXPECT_EQ(::pipe(toTool), 0);
    EXPECT_EQ(::pipe(fromTool), 0);
    ::fcntl(fromTool[0], F_SETFL, O_NONBLOCK);  // so written() never waits
  }
  ~Pipes() {
    for (int fd : {toTool[0], toTool[1], fromTool[0], fromTool[1]}) {
      ::close(fd);  // -1 for an end a test closed itself
    }
  }
  // What the tool wrote so far.
  std::string written() {
    std::string out;
    char buffer[256];
    for (ssize_t got; (got = ::read(fromTool[0], buffer, sizeof buffer)) > 0;) {
      out.append(buffer, static_cast<std::size_t>(got));
    }
    return out;
  }
  void answer(const char* text) { EXPECT_GT(::write(toTool[1], text, strlen(text)), 0); }
};

TEST(FilesAndPipesTest, NothingFollowsAnAnnouncementBeforeItsAnswerAndAStopEndsTheWait) {
  Pipes pipes;
  StopSignals signals;
  ApplicationChannel channel(pipes.toTool[0], pipes.fromTool[1], signals);
  channel.working();
  EXPECT_EQ(pipes.written(), "attachment\n");
  ASSERT_TRUE(channel.announce("/m/a\nfirst"));
  EXPECT_EQ(pipes.written(), "/m/a\nfirst");
  channel.working();  // the next message's parts, prepared while the first is stored
  EXPECT_EQ(pipes.written(), "") << "a status now would make the announcement a status";
  pipes.answer("go f");
  pipes.answer("or it");
  ASSERT_TRUE(channel.settle());
  EXPECT_EQ(pipes.written(), "attachment\n") << "said once the answer came";
  ASSERT_TRUE(channel.announce("/m/a\nsecond"));
  pipes.answer("go for it");
  ASSERT_TRUE(channel.announce("/m/a\nthird")) << "collects the answer before it writes";
  EXPECT_EQ(pipes.written(), "/m/a\nsecond/m/a\nthird");

  // End of input: the outstanding answer never comes and nothing more is written.
  ::close(pipes.toTool[1]);
  pipes.toTool[1] = -1;
  EXPECT_FALSE(channel.settle());
  EXPECT_TRUE(channel.stopped());
  EXPECT_FALSE(channel.announce("/m/a\nfourth"));
  channel.working();
  EXPECT_EQ(pipes.written(), "");

  // A stop signal ends the wait for an answer.
  Pipes signalled;
  ApplicationChannel second(signalled.toTool[0], signalled.fromTool[1], signals);
  ASSERT_TRUE(second.announce("/m/a\nfirst"));
  ASSERT_EQ(::raise(SIGTERM), 0);  // blocked, so it waits on the signalfd
  EXPECT_FALSE(second.settle());
  EXPECT_TRUE(second.stopped());
  // A closed output ends a run too.
  Pipes other;
  ApplicationChannel third(other.toTool[0], other.fromTool[1], signals);
  ::close(other.fromTool[0]);
  other.fromTool[0] = -1;
  EXPECT_FALSE(third.announce("/m/a\nlost"));
}

TEST(FilesAndPipesTest, RecordFilesAreRewrittenInPlace) {
  ScratchDir dir;
  RecordFile file(dir / "a.tmp");
  ASSERT_TRUE(file.open());
  struct stat first {};
  ASSERT_EQ(::stat((dir / "a.tmp").c_str(), &first), 0);
  EXPECT_EQ(first.st_mode & 0777, 0600u) << "mail is for its owner's eyes";
  const std::string big(300000, 'x');
  for (const std::string text : {"hello world", "hi", big.c_str(), "after the big one", ""}) {
    ASSERT_TRUE(file.rewrite({text.substr(0, text.size() / 2), text.substr(text.size() / 2)}));
    EXPECT_EQ(readFile(dir / "a.tmp"), text);
  }
  struct stat last {};
  ASSERT_EQ(::stat((dir / "a.tmp").c_str(), &last), 0);
  EXPECT_EQ(first.st_ino, last.st_ino);
  RecordFile nowhere(dir / "missing/a.tmp");
  EXPECT_FALSE(nowhere.open());
  EXPECT_FALSE(nowhere.rewrite({"x"}));
}

TEST(FilesAndPipesTest, RunLogLinesAndTheRecordFilesBesideIt) {
  ScratchDir dir;
  {
    RunLog log(dir / "archive.db.log");
    ASSERT_TRUE(log.open());
    log.invalid("/mail/a\nb\xE9.mbox");
    log.parsed(3);
  }
  EXPECT_EQ(readFile(dir / "archive.db.log"), "INVALID: /mail/a bé.mbox\nPARSED: 3\n");

  // A run log without ".log" gets the record files' endings appended; no sources is no error.
  std::vector<std::string> args = test::toolArguments({}, "/x/runlog");
  args.insert(args.begin(), "domail");
  std::vector<const char*> argv;
  for (const std::string& arg : args) {
    argv.push_back(arg.c_str());
  }
  std::string error;
  const std::optional<DomailArguments> a =
      DomailArguments::parse(static_cast<int>(argv.size()), argv.data(), error);
  ASSERT_TRUE(a) << error;
  EXPECT_EQ(a->messageFile() + " " + a->rawFile(), "/x/runlog.tmp /x/runlog.raw");
  EXPECT_TRUE(a->sources.empty());
}

}  // namespace
}  // namespace quillery::tools
