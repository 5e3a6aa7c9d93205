// Partial .emlx files rebuilt from the parts Apple Mail keeps beside them, read back by GMime.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "SourceFixtures.h"
#include "common/MailWalker.h"

namespace quillery::test {
namespace {

std::string allByteValues() {
  std::string bytes;
  for (int i = 0; i < 40 * 256; ++i) {
    bytes += static_cast<char>(i);
  }
  return bytes;
}

// Part 2 lies in Attachments/7/2/ (decoded bytes), part 3 too (text for quoted-printable),
// part 4 in Messages/7.4.emlxpart (already base64), part 5 in Messages/7.5.emlxpart (text that
// is no quoted-printable yet), part 6 nowhere.
TEST(PartialEmlxAssemblerTest, StoredPartsComeBackInTheirOwnEncoding) {
  QTemporaryDir dir;
  const std::string box = dir.path().toStdString() + "/Box.mbox";
  const std::string qpText = "Grüße = 100%\nline with trailing blank \n" + std::string(200, 'x') +
                             "\nend without line break";
  const std::string head =
      "From: a@example.com\nSubject: partial\nMIME-Version: 1.0\n"
      "Content-Type: multipart/mixed; boundary=\"XX\"\n\npreamble\n";
  std::string message = head + "--XX\nContent-Type: text/plain\n\nHello\n";
  for (const char* headers : {"application/pdf; name=a.pdf\nContent-Transfer-Encoding: base64",
                              "text/plain; name=b.txt; charset=utf-8\n"
                              "Content-Transfer-Encoding: quoted-printable",
                              "image/png\nContent-Transfer-Encoding: base64",
                              "text/plain\nContent-Transfer-Encoding: quoted-printable",
                              "image/gif\nContent-Transfer-Encoding: base64"}) {
    message +=
        "--XX\nContent-Type: " + std::string(headers) + "\nX-Apple-Content-Length: 1234\n\n\n";
  }
  message += "--XX--\nepilogue\n";
  writeFile(box + "/Messages/7.partial.emlx", emlx(message));
  writeFile(box + "/Attachments/7/2/a.pdf", allByteValues());
  writeFile(box + "/Attachments/7/3/renamed.txt", qpText);
  writeFile(box + "/Messages/7.4.emlxpart", "iVBORw0KGgo=\n");
  writeFile(box + "/Messages/7.5.emlxpart", "x = 1 =\nGrüße\n");
  // A full copy beside a partial one is the better of the two.
  const std::string whole = numberedMessage(8);
  writeFile(box + "/Messages/8.partial.emlx", emlx(numberedMessage(8, "cut\n")));
  writeFile(box + "/Messages/8.emlx", emlx(whole));

  Collected got;
  ASSERT_TRUE(tools::walkMailboxes({box}, got.sink(), got.invalidSink(), {}));
  EXPECT_TRUE(got.invalid.empty());
  ASSERT_EQ(got.messages.size(), 2u);
  EXPECT_EQ(got.messages[1].source, whole);
  const std::string& rebuilt = got.messages[0].source;
  EXPECT_TRUE(rebuilt.starts_with(head));
  EXPECT_TRUE(rebuilt.ends_with("--XX--\nepilogue\n"));
  // Restored base64 (both restored ones end in padding) runs up to the line break before the
  // next delimiter, with no blank line between.
  EXPECT_EQ(rebuilt.find("=\n\n--XX"), std::string::npos);
  const std::vector<std::string> parts = decodedParts(rebuilt);
  // The missing part stays as the partial file has it.
  EXPECT_EQ(parts, (std::vector<std::string>{"Hello", allByteValues(), qpText, "\x89PNG\r\n\x1a\n",
                                             "x = 1 =\nGrüße\n", ""}));
  EXPECT_NE(rebuilt.find("X-Apple-Content-Length"), std::string::npos);
  EXPECT_EQ(rebuilt.find("X-Apple-Content-Length"), rebuilt.rfind("X-Apple-Content-Length"))
      << "only the missing part keeps its mark";
}

}  // namespace
}  // namespace quillery::test
