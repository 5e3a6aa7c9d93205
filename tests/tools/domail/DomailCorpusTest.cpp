// The tool on the shared corpus's single messages in every charset, driven as the application
// drives it, against records kept beside this file. The readers' corpus checks are CorpusTest.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "ToolRun.h"
#include "domail/CharsetDecoder.h"
#include "support/TestEnvironment.h"

namespace quillery::tools::test {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kFixedTime = 1234567890;  // 2009-02-13 23:31:30 UTC
const char* const kReplacement = "\xEF\xBF\xBD";

// What is kept beside this file: the header fields, the start of the body and each
// attachment's type, name, encoding and decoded size.
std::string summary(const std::string& name, const StoredRecord& r) {
  std::string out = "== " + name + "\nFROM:" + r.from + "\nTO:" + r.to + "\nSUBJECT:" + r.subject +
                    "\nDATE:" + r.date + "\nMAILTO:" + r.mailto + "\nMAILBOX:" + r.mailbox + "\n";
  std::istringstream body(r.body);
  std::string line;
  for (int shown = 0; shown < 4 && std::getline(body, line); ++shown) {
    const QString text = QString::fromStdString(line);  // cut between characters, not bytes
    out += "BODY|" + (text.size() > 160 ? text.left(157) + "..." : text).toStdString() + "\n";
  }
  out += "BODY SIZE:" + std::to_string(r.body.size()) + "\n";
  for (const StoredRecord::Attachment& a : r.attachments) {
    out += "ATTACHMENT:" + a.type + " | " + a.filename + " | " + a.encoding + " | " +
           std::to_string(a.bytes().size()) + "\n";
  }
  return out;
}

TEST(DomailCorpusTest, MimeSamplesMatchTheirKeptRecords) {
  const std::string corpus = quillery::test::corpusDir().toStdString();
  if (corpus.empty()) {
    GTEST_SKIP() << "the shared mail corpus (../shared/corpus) is not here; set "
                    "QUILLERY_CORPUS to its folder to run this test";
  }
  // The single messages as one Apple Mail account, each file's modification time fixed so
  // that the fallback dates are fixed too.
  ScratchDir home;
  std::vector<fs::path> files(fs::directory_iterator(corpus + "/mime"), {});
  std::sort(files.begin(), files.end());
  for (std::size_t i = 0; i < files.size(); ++i) {
    writeFile(
        home / ("Library/Mail/Samples/INBOX.mbox/Messages/" + std::to_string(i + 1) + ".emlx"),
        emlx(readFile(files[i].string()), -1, false, -1), kFixedTime);
  }
  ToolRequest request;
  request.mode = ToolRequest::Accounts;
  request.home = home.path();
  request.htmlParts = true;
  request.sources = {"Samples"};
  const ToolOutcome run = runTool(request);
  ASSERT_EQ(run.messages.size(), files.size());
  EXPECT_EQ(run.faults, 0);
  std::string actual;
  for (std::size_t i = 0; i < files.size(); ++i) {
    const std::string name = files[i].filename().string();
    const StoredRecord& r = run.messages[i].record;
    actual += summary(name, r);
    // Every charset is decoded whole: no bytes it could not explain, no encoded words left.
    for (const std::string* field : {&r.from, &r.to, &r.subject, &r.body}) {
      EXPECT_TRUE(CharsetDecoder::isValidUtf8(*field) &&
                  field->find(kReplacement) == std::string::npos)
          << name << ": " << *field;
    }
    EXPECT_EQ((r.subject + "\n" + r.from).find("=?"), std::string::npos) << name;
  }
  const std::string keptPath = QUILLERY_SOURCE_DIR "/tests/tools/domail/expected/mime-samples.txt";
  if (std::getenv("QUILLERY_UPDATE_EXPECTED")) {
    writeFile(keptPath, actual);
  }
  EXPECT_EQ(actual, readFile(keptPath))
      << "set QUILLERY_UPDATE_EXPECTED=1 to rewrite " << keptPath << " after a deliberate change";
}

}  // namespace
}  // namespace quillery::tools::test
