// The mbox reader on files written here in each variant that mail programs produce.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "SourceFixtures.h"
#include "common/MboxReader.h"

namespace quillery::test {
namespace {

class MboxReaderTest : public ::testing::Test {
 protected:
  // Each message as its postmark date (or "-"), a blank and its source; then "not mail" or
  // "failed" when the reader says so.
  std::vector<std::string> read(const std::string& bytes) {
    const std::string path = dir_.path().toStdString() + "/file.mbox";
    writeFile(path, bytes);
    tools::MboxReader reader(path);
    EXPECT_TRUE(reader.open());
    std::vector<std::string> out;
    for (tools::MboxMessage m; reader.next(m);) {
      out.push_back((m.postmarkDate ? std::to_string(*m.postmarkDate) : "-") + " " + m.source);
    }
    if (reader.notMail() || reader.failed()) {
      out.push_back(reader.notMail() ? "not mail" : "failed");
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
    const std::string body =
        std::string(static_cast<std::size_t>(500 + (i * 7919) % 5000), 'a' + i % 26) + "\n" +
        (i % 5 ? "" : "\nFrom the desk of Sam Mon Jan  1 10:00:00 2018\n") +
        (i % 7 ? "" : ">From a quoted line\n>>From deeper\n") + (i % 11 ? "" : "\n\n");
    const std::string message = numberedMessage(i, i == 13 ? "" : body);
    originals.push_back("1514800800 " + message);  // Mon Jan  1 10:00:00 2018 UTC
    std::string quoted;  // a ">" before every line that starts with ">*From "
    for (std::size_t at = 0, end; at < message.size(); at = end) {
      end = message.find('\n', at) + 1;
      quoted += message.compare(message.find_first_not_of('>', at), 5, "From ") == 0 ? ">" : "";
      quoted += message.substr(at, end - at);
    }
    file +=
        "From s" + std::to_string(i) + "@example.com Mon Jan  1 10:00:00 2018\n" + quoted + "\n";
  }
  const std::vector<std::string> messages = read(file);
  ASSERT_EQ(messages.size(), originals.size());
  for (std::size_t i = 0; i < originals.size(); ++i) {
    ASSERT_EQ(messages[i], originals[i]) << "message " << i;
  }
}

TEST_F(MboxReaderTest, PostmarksContentLengthsAndFilesThatAreNoMbox) {
  using List = std::vector<std::string>;
  const std::string one =
      "Subject: one\n\nMy favourite film:\n\nFrom Russia with love\nYear: 1963\n\n"
      "From here on all is fine.\nFrom - \nnot a header line\n";
  // mboxcl2: a Content-Length that leads to the next postmark lets a body hold unquoted
  // postmark-like lines; a wrong one is ignored and the postmarks decide. Some writers
  // leave the body's last line end out of the count.
  const std::string fake = "Look:\n\nFrom c@d Mon Jan  1 10:00:00 2018\nSubject: fake\n\nx\n";
  const std::string counted =
      "Subject: 1\nContent-Length: " + std::to_string(fake.size()) + "\n\n" + fake;
  const std::string countedShort =
      "Subject: 2\nContent-length: " + std::to_string(fake.size() - 1) + "\n\n" + fake;
  // A message saved on its own (.eml) is one message, whatever "From " lines a forwarded
  // message inside it brings, and nothing in it is unquoted or trimmed.
  const std::string eml = numberedMessage(1, ">From me\n\n") +
                          "\nFrom a@b Mon Jan  1 10:00:00 2018\n" + numberedMessage(2);
  const std::tuple<const char*, std::string, List> cases[] = {
      {"postmarks need a blank line before them and a date or a header after them",
       "From a@example.com Sat Jan  2 11:02:19 2021\n" + one +
           "\nFrom - \nSubject: two\n\nbody two\n"
           "From - Mon Jun  3 12:50:27 1996\nSubject: three\n\nbody three\n\n"
           "From 1234567890123456789@xxx Wed Jan 01 10:00:00 +0000 2020\n"
           "X-GM-THRID: 1\nSubject: four\n\nbody four\n\n"
           "From b@example.com Tue Mar  5 10:00:00 2019 -0800 (PST)\nSubject: five\n\nbody five\n",
       // Netscape's bare "From - " has no date; the last one is 10:00 at -0800.
       {"1609585339 " + one, "- Subject: two\n\nbody two\n",
        "833806227 Subject: three\n\nbody three\n",
        "1577872800 X-GM-THRID: 1\nSubject: four\n\nbody four\n",
        "1551808800 Subject: five\n\nbody five\n"}},
      {"content lengths",
       "From a@b Mon Jan  1 10:00:00 2018\n" + counted + "\nFrom a@b Mon Jan  1 10:00:00 2018\n" +
           countedShort +
           "\nFrom b@c Mon Jan  1 10:00:00 2018\nSubject: 3\nContent-Length: 999\n\nthree\n\n"
           "From c@d Mon Jan  1 11:00:00 2018\nSubject: 4\n\nfour\n",
       {"1514800800 " + counted, "1514800800 " + countedShort,
        "1514800800 Subject: 3\nContent-Length: 999\n\nthree\n",
        "1514804400 Subject: 4\n\nfour\n"}},
      {"CRLF with a byte-order mark",
       "\xEF\xBB\xBF"
       "From a@b Mon Jan  1 10:00:00 2018\r\nSubject: one\r\n\r\n>From here\r\n\r\n"
       "From a@b Mon Jan  1 10:00:00 2018\r\nSubject: two\r\n\r\nlast\r\n\r\n",
       {"1514800800 Subject: one\r\n\r\nFrom here\r\n", "1514800800 Subject: two\r\n\r\nlast\r\n"}},
      {"a message saved on its own", "\n" + eml, {"- " + eml}},
      // A first line that starts with "From " is a postmark when a date or a header vouches
      // for it, however odd the rest of it is.
      {"an odd postmark",
       "From someone with odd words\nSubject: x\n\nbody\n",
       {"- Subject: x\n\nbody\n"}},
      {"a letter", "From the start of this letter\nto its end\n", {"not mail"}},
      {"an empty mailbox", "", {}},
      {"a picture", std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), {"not mail"}},
      {"text", "this is not mail\nat all\n", {"not mail"}},
  };
  for (const auto& [what, file, messages] : cases) {
    EXPECT_EQ(read(file), messages) << what;
  }
}

// A line longer than the reader's one-megabyte piece: the piece that starts inside it is
// no line start, so postmark-like text there is body text, and the line arrives whole.
TEST_F(MboxReaderTest, LongLinesArriveWholeAndNeverSplitAMessage) {
  const std::string longLines = std::string(1u << 20, 'A') +
                                "From x@y Mon Jan  1 10:00:00 2018\nSubject: not a header\n" +
                                std::string(3u << 20, 'B') + "\n";
  const std::string one = "Subject: long\n\n\n" + longLines;
  EXPECT_TRUE(read("From a@b Mon Jan  1 10:00:00 2018\n" + one +
                   "\nFrom a@b Mon Jan  1 10:00:00 2018\nSubject: two\n\nshort\n") ==
              std::vector<std::string>({"1514800800 " + one, "1514800800 Subject: two\n\nshort\n"}))
      << "the long message was changed or split";
}

}  // namespace
}  // namespace quillery::test
