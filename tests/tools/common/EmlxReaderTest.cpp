// The .emlx reader on files in the shapes Apple Mail writes, and in the broken shapes found
// in real copies of mail folders.
#include <gtest/gtest.h>

#include "SourceFixtures.h"
#include "common/EmlxReader.h"

namespace quillery::test {
namespace {

using tools::EmlxReader;

TEST(EmlxReaderTest, PaddedCountLeadsToEitherTrailerAndItsDates) {
  const std::string message = numberedMessage(1);
  for (const bool oldTrailer : {false, true}) {
    const auto content = EmlxReader::parse(emlx(message, -1, oldTrailer));
    ASSERT_TRUE(content.has_value());
    EXPECT_EQ(content->source, message);
    EXPECT_EQ(content->dateSent, 1500000000);
    EXPECT_EQ(content->dateReceived, 1500000100);
  }
  EXPECT_EQ(
      EmlxReader::plistDate("<key>date-sent</key>\n<date>2017-07-14T02:40:00Z</date>", "date-sent"),
      1500000000);
}

// Wrong or missing counts and trailers still give the whole message; text that holds no
// message gives nothing.
TEST(EmlxReaderTest, EveryShapeGivesTheWholeMessageOrNothing) {
  const std::string message = numberedMessage(2);
  const std::string right = emlx(message);
  const std::string trailer = right.substr(right.find("<?xml"));
  const long size = static_cast<long>(message.size());
  // A property list quoted in the body is the message's own, not a trailer.
  const std::string quoting = numberedMessage(
      3, "<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict/></plist>\nmore text\n");
  // A closing boundary that runs straight into the trailer keeps every byte of the message.
  const std::string runOn = numberedMessage(4, "--b\n\nx\n--b--");
  const std::tuple<const char*, std::string, std::string> files[] = {
      {"count too large", emlx(message, size + 500), message},
      {"count too small", emlx(message, size - 20), message},
      {"no count line", message + trailer, message},
      {"no plist", right.substr(0, right.find("<?xml")), message},
      {"no count, no plist", message, message},
      {"count larger than the file, no plist", "99999\n" + message, message},
      {"a quoted plist", "99999\n" + quoting, quoting},
      {"a run-on boundary", emlx(runOn), runOn},
      {"empty", "", "(none)"},
      {"a count alone", "120       \n", "(none)"},
      {"no header", "35\nthis is an invalid .emlx structure\n", "(none)"},
      {"no header before the plist", emlx("not a header line\n\nbody\n"), "(none)"}};
  for (const auto& [what, file, expected] : files) {
    const auto content = EmlxReader::parse(file);
    EXPECT_EQ(content ? content->source : "(none)", expected) << what;
  }
}

}  // namespace
}  // namespace quillery::test
