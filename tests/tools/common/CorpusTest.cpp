// The readers on the shared corpus of real mail (skipped when the corpus is absent).
#include <gtest/gtest.h>

#include <filesystem>
#include <map>

#include "SourceFixtures.h"
#include "common/MailWalker.h"
#include "support/TestEnvironment.h"

namespace quillery::test {
namespace {

namespace fs = std::filesystem;

// Names the corpus folder `corpus`, or skips the test when it is absent.
#define REQUIRE_CORPUS()                                                                      \
  const std::string corpus = test::corpusDir().toStdString();                                 \
  if (corpus.empty()) {                                                                       \
    GTEST_SKIP() << "the shared mail corpus is absent (../shared/corpus or QUILLERY_CORPUS)"; \
  }

bool startsWithHeaderField(const std::string& source) {
  const std::size_t colon = source.find(':');
  return colon != std::string::npos && colon > 0 && source.find_first_of(" \t\r\n") > colon;
}

std::string withoutCr(std::string text) {
  std::erase(text, '\r');
  return text;
}

std::map<std::string, tools::RawMessage> byFileName(std::vector<tools::RawMessage>& messages) {
  std::map<std::string, tools::RawMessage> out;
  for (tools::RawMessage& m : messages) {
    out[fs::path(m.path).filename().string()] = std::move(m);
  }
  return out;
}

TEST(CorpusTest, MboxFilesGiveTheMessagesACarefulReaderFinds) {
  REQUIRE_CORPUS();
  const std::string dir = corpus + "/mbox/";
  const std::map<std::string, std::size_t> counts = {
      {"users_ponymail_apache_org_2022-01.mbox", 6},
      {"users_ponymail_apache_org_2019-09.mbox", 4},
      {"dev_ponymail_apache_org_2020-10.mbox", 1},
      {"netscape-1996-content-length.mbox", 29},
      {"unmunged-from-lines.mbox", 2},
      {"apple-mail-legacy/Mailboxes/Apache-Users.mbox", 4}};
  std::map<std::string, Collected> read;
  for (const auto& [name, count] : counts) {
    Collected& got = read[name];
    ASSERT_TRUE(tools::walkMboxFiles({dir + name}, got.sink(), got.invalidSink(), {}));
    EXPECT_TRUE(got.invalid.empty()) << name;
    ASSERT_EQ(got.messages.size(), count) << name;
    for (const tools::RawMessage& m : got.messages) {
      EXPECT_TRUE(startsWithHeaderField(m.source)) << name << ": " << m.source.substr(0, 80);
      if (name.find("ponymail") != std::string::npos) {
        EXPECT_TRUE(m.postmarkDate.has_value()) << name;  // after a double blank
      }
    }
  }
  for (const tools::RawMessage& m : read["unmunged-from-lines.mbox"].messages) {
    EXPECT_NE(m.source.find("\nFrom Russia with love\n"), std::string::npos);
  }
  std::size_t largest = 0;
  std::size_t unquoted = 0;
  for (const tools::RawMessage& m : read["netscape-1996-content-length.mbox"].messages) {
    largest = std::max(largest, m.source.size());
    unquoted += m.source.find("\nFrom - Fri Dec 13 15:01:21 1996\n") != std::string::npos;
  }
  EXPECT_GT(largest, 700'000u);
  EXPECT_GT(unquoted, 0u);
  // The legacy Apple Mail folder holds a copy of an Apache archive.
  const Collected& legacy = read["apple-mail-legacy/Mailboxes/Apache-Users.mbox"];
  EXPECT_EQ(legacy.sources(), read["users_ponymail_apache_org_2019-09.mbox"].sources());
  EXPECT_EQ(legacy.mailboxes(), std::vector<std::string>(4, "Apache-Users"));
}

// Single messages chosen as mbox files: each is one message, even where a forwarded message
// inside starts with "From ". A file without a postmark is taken byte for byte; one with a
// postmark loses that line and, unless a Content-Length counts it in, the blank line that
// ends a message in an mbox.
TEST(CorpusTest, SavedMessagesAreOneMessageEach) {
  REQUIRE_CORPUS();
  for (const auto& file : fs::directory_iterator(corpus + "/mime")) {
    Collected got;
    tools::walkMboxFiles({file.path().string()}, got.sink(), got.invalidSink(), {});
    ASSERT_EQ(got.messages.size(), 1u) << file.path();
    const std::string& source = got.messages[0].source;
    std::string bytes = readFile(file.path().string());
    const bool postmark = bytes.starts_with("From ");
    bytes.erase(0, postmark ? bytes.find('\n') + 1 : 0);
    EXPECT_TRUE(source == bytes ||
                (postmark && (source + "\n" == bytes || source + "\r\n" == bytes)))
        << file.path();
  }
}

TEST(CorpusTest, AppleMailFoldersGiveEveryMessageWhole) {
  REQUIRE_CORPUS();
  const std::string mail = corpus + "/emlx/Mail";
  Collected got;
  ASSERT_TRUE(tools::walkAccounts(mail,
                                  {"IMAP-sample@imap.example.com", "POP-sample@pop.example.com"},
                                  {false, false}, got.sink(), got.invalidSink(), {}));
  EXPECT_TRUE(got.invalid.empty());
  ASSERT_EQ(got.messages.size(), 13u);
  std::map<std::string, tools::RawMessage> files = byFileName(got.messages);
  for (const auto& [name, m] : files) {
    EXPECT_TRUE(startsWithHeaderField(m.source)) << name;
    EXPECT_EQ(m.source.find("DTD PLIST"), std::string::npos) << name;
    EXPECT_TRUE(m.plistDateReceived.has_value()) << name;
  }
  EXPECT_EQ(files["114862.emlx"].source, readFile(corpus + "/emlx/expected/114862.eml"));

  // Every part kept under Attachments/ is back in its message, decoded byte for byte.
  const std::string attachments = mail + "/IMAP-sample@imap.example.com/INBOX.mbox/Attachments";
  for (const auto& id : fs::directory_iterator(attachments)) {
    const std::string name = id.path().filename().string() + ".partial.emlx";
    ASSERT_TRUE(files.count(name)) << name;
    EXPECT_EQ(files[name].source.find("X-Apple-Content-Length"), std::string::npos) << name;
    const std::vector<std::string> parts = decodedParts(files[name].source);
    for (const auto& file : fs::recursive_directory_iterator(id.path())) {
      if (file.is_regular_file()) {
        const std::string stored = readFile(file.path().string());
        EXPECT_TRUE(std::find(parts.begin(), parts.end(), stored) != parts.end() ||
                    std::find(parts.begin(), parts.end(), withoutCr(stored)) != parts.end())
            << file.path();
      }
    }
  }
  // Without their Attachments folder the parts stay out, and the message still comes.
  EXPECT_NE(files["114893.partial.emlx"].source.find("X-Apple-Content-Length"), std::string::npos);

  // The rebuilt message reads as the reference rebuild does (which writes CRLF line ends).
  auto parts = [](const std::string& source) {
    std::vector<std::string> out = decodedParts(source);
    std::transform(out.begin(), out.end(), out.begin(), withoutCr);
    return out;
  };
  EXPECT_TRUE(parts(files["114892.partial.emlx"].source) ==
              parts(readFile(corpus + "/emlx/expected/114892.eml")));
}

TEST(CorpusTest, MalformedEmlxFilesAreReadAsFarAsTheyGoOrNamed) {
  REQUIRE_CORPUS();
  const std::string dir = corpus + "/emlx/malformed/";
  const std::vector<fs::path> found(fs::directory_iterator(dir), {});
  const std::vector<std::string> paths(found.begin(), found.end());
  Collected got;
  ASSERT_TRUE(tools::walkMboxFiles(paths, got.sink(), got.invalidSink(), {}));
  EXPECT_EQ(got.invalid, std::vector<std::string>{dir + "invalid.emlx"});
  std::map<std::string, tools::RawMessage> files = byFileName(got.messages);
  ASSERT_EQ(files.size(), paths.size() - 1);
  // Cut short before the plist: everything after the byte-count line.
  for (const char* name :
       {"broken1.emlx", "763932.emlx", "763933.emlx", "763983.emlx", "763983-badtime.emlx"}) {
    const std::string file = readFile(dir + name);
    EXPECT_EQ(files[name].source, file.substr(file.find('\n') + 1)) << name;
  }
  EXPECT_EQ(files["no-bytecount-no-plist.emlx"].source,
            readFile(dir + "no-bytecount-no-plist.emlx"));
  for (const char* name : {"broken2.emlx", "broken3.emlx"}) {
    EXPECT_TRUE(startsWithHeaderField(files[name].source)) << name;
    EXPECT_EQ(files[name].source.find("<?xml"), std::string::npos) << name;
    EXPECT_EQ(files[name].plistDateReceived, 1581000000) << name;
  }
}

}  // namespace
}  // namespace quillery::test
