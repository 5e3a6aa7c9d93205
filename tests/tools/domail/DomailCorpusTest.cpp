// The tool on real mail: the shared corpus's mbox files, its Apple Mail folders with partial
// messages rebuilt, its single messages in every charset (against records kept beside this
// file), and its malformed files. Every run is driven as the application drives it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>

#include "ToolRun.h"
#include "support/TestEnvironment.h"

namespace quillery::tools::test {
namespace {

namespace fs = std::filesystem;

constexpr std::time_t kFixedTime = 1234567890;  // 2009-02-13 23:31:30 UTC
const char* const kReplacement = "\xEF\xBF\xBD";

std::string corpus() {
  return quillery::test::corpusDir().toStdString();
}

#define REQUIRE_CORPUS()                                                          \
  if (corpus().empty()) {                                                         \
    GTEST_SKIP() << "the shared mail corpus (../shared/corpus) is not here; set " \
                    "QUILLERY_CORPUS to its folder to run this test";             \
  }

std::vector<fs::path> filesIn(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& e : fs::directory_iterator(folder)) {
    if (e.is_regular_file()) {
      files.push_back(e.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

TEST(DomailCorpusTest, MboxFilesGiveEveryMessageOnce) {
  REQUIRE_CORPUS();
  const std::string mbox = corpus() + "/mbox/";
  ToolRequest request;
  request.sources = {mbox + "users_ponymail_apache_org_2022-01.mbox",
                     mbox + "users_ponymail_apache_org_2019-09.mbox",
                     mbox + "dev_ponymail_apache_org_2020-10.mbox",
                     mbox + "netscape-1996-content-length.mbox",
                     mbox + "unmunged-from-lines.mbox",
                     mbox + "apple-mail-legacy/Mailboxes/Apache-Users.mbox"};
  const ToolOutcome run = runTool(request);

  std::map<std::string, int> perMailbox;
  for (const AnnouncedMessage& m : run.messages) {
    ++perMailbox[m.record.mailbox];
    EXPECT_FALSE(m.record.from.empty()) << m.announcement;
    EXPECT_FALSE(m.raw.empty());
    EXPECT_FALSE(m.raw.starts_with("From ")) << "the postmark is not part of the source";
  }
  const std::map<std::string, int> expected = {{"users_ponymail_apache_org_2022-01.mbox", 6},
                                               {"users_ponymail_apache_org_2019-09.mbox", 4},
                                               {"dev_ponymail_apache_org_2020-10.mbox", 1},
                                               {"netscape-1996-content-length.mbox", 29},
                                               {"unmunged-from-lines.mbox", 2},
                                               {"Apache-Users", 4}};
  EXPECT_EQ(perMailbox, expected);
  EXPECT_EQ(run.parsed, 46);
  EXPECT_TRUE(run.invalid.empty());
  EXPECT_EQ(run.faults, 0);
  EXPECT_EQ(run.exitStatus, 0);

  // The unquoted "From Russia with love" lines stay inside their messages, source included.
  int russia = 0;
  for (const AnnouncedMessage& m : run.messages) {
    if (m.record.mailbox == "unmunged-from-lines.mbox") {
      EXPECT_NE(m.record.body.find("\nFrom Russia with love\n"), std::string::npos);
      EXPECT_NE(m.raw.find("\nFrom Russia with love\n"), std::string::npos);
      ++russia;
    }
  }
  EXPECT_EQ(russia, 2);
}

TEST(DomailCorpusTest, AppleMailAccountsRebuildPartialMessages) {
  REQUIRE_CORPUS();
  ScratchDir home;
  const std::string mail = home / "Library/Mail";
  fs::create_directories(mail);
  fs::copy(corpus() + "/emlx/Mail", mail, fs::copy_options::recursive);
  // The whole messages that the partial ones stand for, as an account of their own.
  for (const char* id : {"114862", "114892"}) {
    writeFile(mail + "/Expected/INBOX.mbox/Messages/" + id + ".emlx",
              emlx(readFile(corpus() + "/emlx/expected/" + id + ".eml")));
  }
  ToolRequest request;
  request.mode = ToolRequest::Accounts;
  request.home = home.path();
  request.sources = {"IMAP-sample@imap.example.com", "POP-sample@pop.example.com", "Expected",
                     "Mailboxes"};
  const ToolOutcome run = runTool(request);
  ASSERT_EQ(run.messages.size(), 15u);
  EXPECT_EQ(run.parsed, 15);
  EXPECT_EQ(run.faults, 0);
  EXPECT_TRUE(run.invalid.empty());

  auto find = [&](const std::string& pathEnd) -> const AnnouncedMessage* {
    for (const AnnouncedMessage& m : run.messages) {
      if (m.announcement.substr(0, m.announcement.find('\n')).ends_with(pathEnd)) {
        return &m;
      }
    }
    return nullptr;
  };
  for (const char* id : {"114862", "114892"}) {
    const std::string name = std::string(id) == "114892" ? "114892.partial.emlx" : "114862.emlx";
    const AnnouncedMessage* stored =
        find("IMAP-sample@imap.example.com/INBOX.mbox/Messages/" + name);
    const AnnouncedMessage* whole =
        find(std::string("Expected/INBOX.mbox/Messages/") + id + ".emlx");
    ASSERT_TRUE(stored && whole) << id;
    EXPECT_EQ(stored->record.mailbox, "IMAP-sample@imap.example.com/INBOX");
    EXPECT_EQ(stored->record.subject, whole->record.subject);
    EXPECT_EQ(stored->record.date, whole->record.date);
    EXPECT_EQ(stored->record.body, whole->record.body);
    ASSERT_EQ(stored->record.attachments.size(), whole->record.attachments.size()) << id;
    for (std::size_t i = 0; i < whole->record.attachments.size(); ++i) {
      EXPECT_EQ(stored->record.attachments[i].filename, whole->record.attachments[i].filename);
      EXPECT_EQ(stored->record.attachments[i].bytes(), whole->record.attachments[i].bytes())
          << id << " " << whole->record.attachments[i].filename;
    }
  }
  const AnnouncedMessage* japanese = find("465622.partial.emlx");
  ASSERT_TRUE(japanese);
  EXPECT_EQ(japanese->record.subject, "【151委員会】7/10(月)研究会での講演のご依頼");
}

// The single messages as one Apple Mail account, each file's modification time fixed so
// that the fallback dates are fixed too.
ToolOutcome runMimeSamples(const std::string& home, std::vector<std::string>& names) {
  int number = 1;
  for (const fs::path& file : filesIn(corpus() + "/mime")) {
    writeFile(
        home + "/Library/Mail/Samples/INBOX.mbox/Messages/" + std::to_string(number++) + ".emlx",
        emlx(readFile(file.string())), kFixedTime);
    names.push_back(file.filename().string());
  }
  ToolRequest request;
  request.mode = ToolRequest::Accounts;
  request.home = home;
  request.htmlParts = true;
  request.sources = {"Samples"};
  return runTool(request);
}

// What is kept beside this file: the header fields, the start of the body and each
// attachment's type, name, encoding and decoded size.
std::string summary(const std::string& name, const StoredRecord& r) {
  std::string out = "== " + name + "\nFROM:" + r.from + "\nTO:" + r.to + "\nSUBJECT:" + r.subject +
                    "\nDATE:" + r.date + "\nMAILTO:" + r.mailto + "\nMAILBOX:" + r.mailbox + "\n";
  std::size_t at = 0;
  for (int shown = 0; shown < 4 && at < r.body.size(); ++shown) {
    const std::size_t nl = r.body.find('\n', at);
    std::string line = r.body.substr(at, nl == std::string::npos ? std::string::npos : nl - at);
    if (line.size() > 160) {
      line.resize(160);
      while (!line.empty() && (static_cast<unsigned char>(line.back()) & 0xC0) == 0x80) {
        line.pop_back();
      }
      line.pop_back();  // the lead byte of a cut sequence, or the last ASCII byte
      line += "...";
    }
    out += "BODY|" + line + "\n";
    at = nl == std::string::npos ? r.body.size() : nl + 1;
  }
  out += "BODY SIZE:" + std::to_string(r.body.size()) + "\n";
  for (const StoredRecord::Attachment& a : r.attachments) {
    out += "ATTACHMENT:" + a.type + " | " + a.filename + " | " + a.encoding + " | " +
           std::to_string(a.bytes().size()) + "\n";
  }
  return out;
}

TEST(DomailCorpusTest, MimeSamplesMatchTheirKeptRecords) {
  REQUIRE_CORPUS();
  ScratchDir home;
  std::vector<std::string> names;
  const ToolOutcome run = runMimeSamples(home.path(), names);
  ASSERT_EQ(run.messages.size(), names.size());
  EXPECT_EQ(run.faults, 0);
  std::string actual;
  for (std::size_t i = 0; i < names.size(); ++i) {
    actual += summary(names[i], run.messages[i].record);
  }
  const std::string keptPath = QUILLERY_SOURCE_DIR "/tests/tools/domail/expected/mime-samples.txt";
  if (std::getenv("QUILLERY_UPDATE_EXPECTED")) {
    writeFile(keptPath, actual);
  }
  EXPECT_EQ(actual, readFile(keptPath))
      << "set QUILLERY_UPDATE_EXPECTED=1 to rewrite " << keptPath << " after a deliberate change";
}

TEST(DomailCorpusTest, MimeSamplesDecodeEveryCharsetWithoutMojibake) {
  REQUIRE_CORPUS();
  ScratchDir home;
  std::vector<std::string> names;
  const ToolOutcome run = runMimeSamples(home.path(), names);
  ASSERT_EQ(run.messages.size(), names.size());
  std::map<std::string, const StoredRecord*> byName;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const StoredRecord& r = run.messages[i].record;
    byName[names[i].substr(0, 2)] = &r;
    for (const std::string* field : {&r.from, &r.to, &r.subject, &r.body}) {
      EXPECT_TRUE(StoredRecord::validUtf8(*field)) << names[i];
      EXPECT_EQ(field->find(kReplacement), std::string::npos) << names[i] << ": " << *field;
    }
    EXPECT_EQ(r.subject.find("=?"), std::string::npos) << names[i];
    EXPECT_EQ(r.from.find("=?"), std::string::npos) << names[i];
  }
  struct Expected {
    const char* sample;
    const char* subject;
    const char* from;
    const char* inBody;
  };
  const Expected table[] = {
      {"04", "P_@_С_C_Ы_Л_K_И", "Рекреативное агентство", "ЧТО ТАКОЕ РЕКЛАМНАЯ РАССЫЛКА?"},
      {"05", "Formação FrenetikPolis: Mega Campanha Final Verão | Cursos de Setembro",
       "Formação Frenetikpolis <info@formacaofrenetik.info>", "TEST"},
      // The carrier's emoji lies in the private use area, where CP932 puts it.
      {"06", "テスト\xEE\x9B\xAC", "docomo@docomo.ne.jp", "テストです"},
      {"07", "絵文字🎅", "jpmobile@i.softbank.jp <jpmobile@i.softbank.jp>", "🎄"},
      {"08",
       "タイトルの長いメールの場合の対処を実装するためのテストケースとしてのメールに含まれている"
       "件名であるサブジェクト部分",
       "Shin-ichiro OGAWA <info@jpmobile.jp>", "本文です"},
      {"11", "Je prépare mon été zéro complexe !", "Marina de Carlance <contact@carlance.fr>",
       "Offre valable du 8 mars au 8 avril 2017"},
      {"12", "Test message from Netscape Communicator 4.7", "Doug Sauder <dwsauder@example.com>",
       "Die Hasen klagten einst über ihre mißliche Lage"},
      {"15", "Ogone NIEUWE order Maurits PAYID: 951597484 / orderID: 456123 / status: 5",
       "Ogone <noreply@ogone.com>", "Uw bestelgegevens"},
      {"16", "rr test 7", "RR Tester 1 <rrtest1@xink.io>", "шостий"},
  };
  for (const Expected& e : table) {
    const StoredRecord& r = *byName.at(e.sample);
    EXPECT_EQ(r.subject, e.subject) << e.sample;
    EXPECT_EQ(r.from, e.from) << e.sample;
    EXPECT_NE(r.body.find(e.inBody), std::string::npos) << e.sample << ":\n" << r.body;
  }
  // RFC 2231 names: continuations in UTF-8, and bytes that do not fit the declared
  // ISO-2022-JP read as windows-1252.
  ASSERT_EQ(byName.at("10")->attachments.size(), 1u);
  EXPECT_EQ(byName.at("10")->attachments[0].filename,
            "かきくけこかきくけこかきくけこかきくけこかきくけこ.txt");
  EXPECT_EQ(byName.at("10")->attachments[0].blob, "this is the data\n\n");
  ASSERT_EQ(byName.at("09")->attachments.size(), 1u);
  EXPECT_EQ(byName.at("09")->attachments[0].filename, "01 Quien Te DijŠat. Pitbull.mp3");
  // A nested message brings its text under a header block and its PDF as an attachment.
  EXPECT_NE(byName.at("03")->body.find("-------- Attached message --------\nFrom: Test Tester"),
            std::string::npos);
  ASSERT_EQ(byName.at("03")->attachments.size(), 1u);
  EXPECT_EQ(byName.at("03")->attachments[0].filename, "broken.pdf");
  // winmail.dat stays whole.
  ASSERT_EQ(byName.at("17")->attachments.size(), 1u);
  EXPECT_EQ(byName.at("17")->attachments[0].filename, "winmail.dat");
  EXPECT_EQ(byName.at("17")->attachments[0].encoding, "base64");
  // Dates: fractional seconds with an unsigned zone; no Date at all (the file's time).
  EXPECT_EQ(byName.at("13")->date, "2012-07-17 22:23:35");
  EXPECT_EQ(byName.at("04")->date, "2009-02-13 23:31:30");
}

TEST(DomailCorpusTest, MalformedFilesAreNamedAndTheRunGoesOn) {
  REQUIRE_CORPUS();
  ScratchDir home;
  const std::string messages = home / "Library/Mail/Broken/INBOX.mbox/Messages/";
  std::map<std::string, std::string> nameOf;
  int number = 1;
  for (const fs::path& file : filesIn(corpus() + "/emlx/malformed")) {
    const std::string target = messages + std::to_string(number++) + ".emlx";
    writeFile(target, readFile(file.string()), kFixedTime);
    nameOf[target] = file.filename().string();
  }
  writeFile(home / "good.mbox",
            "From a@example.com Mon Jan  7 10:00:00 2019\nFrom: a@example.com\nSubject: after "
            "the broken ones\n\nbody\n");
  writeFile(home / "binary.mbox", std::string("\x7f"
                                              "ELF\x02\x01\x01\0\0\0\0",
                                              12));
  ToolRequest request;
  request.mode = ToolRequest::Mailboxes;
  request.sources = {home / "Library/Mail/Broken/INBOX.mbox\n", home / "missing.mbox\n",
                     home / "binary.mbox", home / "good.mbox\n"};
  const ToolOutcome run = runTool(request);
  EXPECT_EQ(run.exitStatus, 0);
  EXPECT_EQ(run.faults, 0);
  std::vector<std::string> invalid;
  for (const std::string& path : run.invalid) {
    invalid.push_back(nameOf.count(path) ? nameOf[path] : fs::path(path).filename().string());
  }
  std::sort(invalid.begin(), invalid.end());
  EXPECT_EQ(invalid, (std::vector<std::string>{"binary.mbox", "invalid.emlx", "missing.mbox"}));
  // Cut-off files, a byte count that promises too much, none at all: all still read.
  EXPECT_EQ(run.messages.size(), 9u);
  EXPECT_EQ(run.parsed, 9);
  ASSERT_FALSE(run.messages.empty());
  EXPECT_EQ(run.messages.back().record.subject, "after the broken ones");
  for (const AnnouncedMessage& m : run.messages) {
    if (m.announcement.find("/3.emlx") != std::string::npos) {  // 763983-badtime
      EXPECT_EQ(m.record.date, "2009-02-13 23:31:30") << "35 August falls back to the file";
    }
  }
}

}  // namespace
}  // namespace quillery::tools::test
