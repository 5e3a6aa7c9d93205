// The mbox reader on files written here in each variant that mail programs produce.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "SourceFixtures.h"
#include "common/MboxReader.h"

namespace quillery::test {
namespace {

using tools::MboxMessage;
using tools::MboxReader;

constexpr std::time_t kJan2018 = 1514800800;  // Mon Jan  1 10:00:00 2018 UTC

class MboxReaderTest : public ::testing::Test {
 protected:
  struct Result {
    std::vector<MboxMessage> messages;
    bool failed = false;
    bool notMail = false;
  };

  Result read(const std::string& bytes) {
    const std::string path = dir_.path().toStdString() + "/file.mbox";
    SourceFixtures::write(path, bytes);
    MboxReader reader(path);
    EXPECT_TRUE(reader.open());
    Result result;
    MboxMessage one;
    while (reader.next(one)) {
      result.messages.push_back(one);
    }
    result.failed = reader.failed();
    result.notMail = reader.notMail();
    return result;
  }

  static std::string mboxrdQuoted(const std::string& message) {
    std::string out;
    std::size_t pos = 0;
    while (pos < message.size()) {
      const std::size_t end = std::min(message.find('\n', pos), message.size() - 1) + 1;
      const std::string line = message.substr(pos, end - pos);
      if (line.find_first_not_of('>') != std::string::npos &&
          line.compare(line.find_first_not_of('>'), 5, "From ") == 0) {
        out += '>';
      }
      out += line;
      pos = end;
    }
    return out;
  }

 private:
  QTemporaryDir dir_;
};

// Several megabytes of mboxrd, so messages straddle the reader's blocks; bodies hold quoted
// "From " lines, end in blank lines, and one body is empty.
TEST_F(MboxReaderTest, MboxrdFileGivesEveryMessageBackExactly) {
  std::vector<std::string> originals;
  std::string file;
  for (int i = 0; i < 3000; ++i) {
    std::string body(static_cast<std::size_t>(500 + (i * 7919) % 5000), 'a' + i % 26);
    body += "\n";
    if (i % 5 == 0) {
      body += "\nFrom the desk of " + std::to_string(i) + " Mon Jan  1 10:00:00 2018\n";
    }
    if (i % 7 == 0) {
      body += ">From a quoted line\n>>From deeper\n";
    }
    if (i % 11 == 0) {
      body += "\n\n";
    }
    originals.push_back(SourceFixtures::message(i, i == 13 ? "" : body));
    file += "From s" + std::to_string(i) + "@example.com Mon Jan  1 10:00:00 2018\n" +
            mboxrdQuoted(originals.back()) + "\n";
  }
  const Result result = read(file);
  ASSERT_EQ(result.messages.size(), originals.size());
  for (std::size_t i = 0; i < originals.size(); ++i) {
    ASSERT_EQ(result.messages[i].source, originals[i]) << "message " << i;
    EXPECT_EQ(result.messages[i].postmarkDate, kJan2018);
  }
  EXPECT_FALSE(result.failed || result.notMail);
}

TEST_F(MboxReaderTest, PostmarkNeedsBlankLineAndDateOrHeaderAfterIt) {
  const std::string one =
      "Subject: one\n\nMy favourite film:\n\nFrom Russia with love\nYear: 1963\n\n"
      "From here on all is fine.\nFrom - \nnot a header line\n";
  const std::string file = "From a@example.com Sat Jan  2 11:02:19 2021\n" + one +
                           "\n"
                           "From - \nSubject: two\n\nbody two\n"
                           "From - Mon Jun  3 12:50:27 1996\nSubject: three\n\nbody three\n\n"
                           "From 1234567890123456789@xxx Wed Jan 01 10:00:00 +0000 2020\n"
                           "X-GM-THRID: 1\nSubject: four\n\nbody four\n\n"
                           "From b@example.com Tue Mar  5 10:00:00 2019 -0800 (PST)\n"
                           "Subject: five\n\nbody five\n";
  const Result result = read(file);
  ASSERT_EQ(result.messages.size(), 5u);
  EXPECT_EQ(result.messages[0].source, one);
  EXPECT_EQ(result.messages[1].source, "Subject: two\n\nbody two\n");
  EXPECT_EQ(result.messages[2].source, "Subject: three\n\nbody three\n");
  EXPECT_EQ(result.messages[3].source, "X-GM-THRID: 1\nSubject: four\n\nbody four\n");
  EXPECT_EQ(result.messages[0].postmarkDate, 1609585339);
  EXPECT_FALSE(result.messages[1].postmarkDate.has_value());  // Netscape's bare "From - "
  EXPECT_EQ(result.messages[2].postmarkDate, 833806227);
  EXPECT_EQ(result.messages[3].postmarkDate, 1577872800);
  EXPECT_EQ(result.messages[4].postmarkDate, 1551808800);  // 10:00 at -0800
}

// mboxcl2: a Content-Length that leads to the next postmark lets a body hold unquoted
// postmark-like lines; a wrong one is ignored and the postmarks decide.
TEST_F(MboxReaderTest, ContentLengthIsTrustedOnlyWhenItLandsOnAPostmark) {
  const std::string fakeBody = "Look:\n\nFrom c@d Mon Jan  1 10:00:00 2018\nSubject: fake\n\nx\n";
  const std::string one =
      "Subject: one\nContent-Length: " + std::to_string(fakeBody.size()) + "\n\n" + fakeBody;
  // Some writers leave the body's last line end out of the count.
  const std::string two =
      "Subject: two\nContent-length: " + std::to_string(fakeBody.size() - 1) + "\n\n" + fakeBody;
  const std::string file = "From a@b Mon Jan  1 10:00:00 2018\n" + one +
                           "\nFrom a@b Mon Jan  1 10:00:00 2018\n" + two +
                           "\nFrom b@c Mon Jan  1 10:00:00 2018\n"
                           "Subject: three\nContent-Length: 999\n\nbody three\n\n"
                           "From c@d Mon Jan  1 11:00:00 2018\nSubject: four\n\nbody four\n";
  const Result result = read(file);
  ASSERT_EQ(result.messages.size(), 4u);
  EXPECT_EQ(result.messages[0].source, one);
  EXPECT_EQ(result.messages[1].source, two);
  EXPECT_EQ(result.messages[2].source, "Subject: three\nContent-Length: 999\n\nbody three\n");
  EXPECT_EQ(result.messages[3].source, "Subject: four\n\nbody four\n");
}

TEST_F(MboxReaderTest, CrlfFileWithByteOrderMark) {
  const std::string file =
      "\xEF\xBB\xBF"
      "From a@b Mon Jan  1 10:00:00 2018\r\nSubject: one\r\n\r\n>From here\r\n\r\n"
      "From a@b Mon Jan  1 10:00:00 2018\r\nSubject: two\r\n\r\nlast\r\n\r\n";
  const Result result = read(file);
  ASSERT_EQ(result.messages.size(), 2u);
  EXPECT_EQ(result.messages[0].source, "Subject: one\r\n\r\nFrom here\r\n");
  EXPECT_EQ(result.messages[1].source, "Subject: two\r\n\r\nlast\r\n");
  EXPECT_EQ(result.messages[1].postmarkDate, kJan2018);
}

TEST_F(MboxReaderTest, FilesThatAreNotAnMboxOfMessages) {
  Result result = read("");
  EXPECT_TRUE(result.messages.empty());
  EXPECT_FALSE(result.failed || result.notMail);  // an empty mailbox

  result = read(std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16));
  EXPECT_TRUE(result.messages.empty());
  EXPECT_TRUE(result.notMail);

  result = read("this is not mail\nat all\n");
  EXPECT_TRUE(result.notMail);

  // A message saved on its own (.eml) is one message, whatever "From " lines a forwarded
  // message inside it brings, and nothing in it is unquoted or trimmed.
  const std::string eml = SourceFixtures::message(1, ">From me\n\n") +
                          "\nFrom a@b Mon Jan  1 10:00:00 2018\n" + SourceFixtures::message(2);
  result = read("\n" + eml);
  ASSERT_EQ(result.messages.size(), 1u);
  EXPECT_EQ(result.messages[0].source, eml);
  EXPECT_FALSE(result.messages[0].postmarkDate.has_value());

  // A first line that starts with "From " is a postmark when a date or a header vouches for
  // it, however odd the rest of it is.
  result = read("From the start of this letter\nto its end\n");
  EXPECT_TRUE(result.notMail);
  result = read("From someone with odd words\nSubject: x\n\nbody\n");
  ASSERT_EQ(result.messages.size(), 1u);
  EXPECT_EQ(result.messages[0].source, "Subject: x\n\nbody\n");
}

// A line longer than the reader's one-megabyte piece: the piece that starts inside it is
// no line start, so postmark-like text there is body text, and the line arrives whole.
TEST_F(MboxReaderTest, LongLinesArriveWholeAndNeverSplitAMessage) {
  const std::string longLines = std::string(1u << 20, 'A') +
                                "From x@y Mon Jan  1 10:00:00 2018\nSubject: not a header\n" +
                                std::string(3u << 20, 'B') + "\n";
  const std::string one = "Subject: long\n\n\n" + longLines;
  const Result result = read("From a@b Mon Jan  1 10:00:00 2018\n" + one +
                             "\nFrom a@b Mon Jan  1 10:00:00 2018\nSubject: two\n\nshort\n");
  ASSERT_EQ(result.messages.size(), 2u);
  EXPECT_TRUE(result.messages[0].source == one) << "the long message was changed";
  EXPECT_EQ(result.messages[1].source, "Subject: two\n\nshort\n");
}

}  // namespace
}  // namespace quillery::test
