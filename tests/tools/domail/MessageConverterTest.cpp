// The conversion library on hand-made messages, where one rule at a time can be shown: which
// part is the body, what becomes an attachment and how it is named and encoded, how header
// values are decoded, and which date a message gets.
#include <gtest/gtest.h>

#include "domail/MessageConverter.h"
#include "domail/MessageDate.h"

namespace quillery::tools {
namespace {

using namespace std::string_literals;

ParsedMessage convert(const std::string& source, PartOptions options = {true, true}) {
  MessageConverter converter(options, 1'000'000'000);
  RawMessage raw;
  raw.source = source;
  ParsedMessage out;
  EXPECT_TRUE(converter.convert(raw, out, [] {}));
  return out;
}

std::string multipart(const std::string& type, const std::string& parts) {
  return "From: a@example.com\nSubject: s\nDate: Mon, 7 Jan 2019 10:00:00 +0000\n"
         "MIME-Version: 1.0\nContent-Type: " +
         type + "; boundary=b\n\n" + parts + "--b--\n";
}

// Each attachment as "name encoding: content|", the encoding "base64 kept" when the content
// is base64 text already.
std::string attachments(const ParsedMessage& m) {
  std::string out;
  for (const ParsedAttachment& a : m.attachments) {
    const char* encoding = a.preEncoded ? " base64 kept: " : a.base64 ? " base64: " : " 8bit: ";
    out += a.filename + encoding + a.content + "|";
  }
  return out;
}

TEST(MessageConverterTest, TheBodyIsThePlainTextAndHtmlOnlyWhenThereIsNone) {
  const std::string alternative = multipart(
      "multipart/alternative",
      "--b\nContent-Type: text/plain; charset=iso-8859-1\nContent-Transfer-Encoding: "
      "quoted-printable\n\nCaf=E9 cr=E8me\n--b\nContent-Type: text/html\n\n<p>Caf&eacute;</p>\n");
  ParsedMessage m = convert(alternative);
  EXPECT_EQ(m.body, "Café crème");
  EXPECT_EQ(attachments(m), "part-2.html 8bit: <p>Caf&eacute;</p>|");

  // HTML alone is read as text, never as markup or in its transfer encoding.
  m = convert(multipart("multipart/mixed",
                        "--b\nContent-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: "
                        "base64\n\nPGgxPlRpdGxlPC9oMT48cD5PbmUmbmJzcDt0d288YnI+dGhyZWU8L3A+\n"),
              {false, false});
  EXPECT_EQ(m.body, "Title\n\nOne two\nthree");

  // A flowed text is joined back into its paragraphs.
  m = convert(
      "From: a@example.com\nContent-Type: text/plain; format=flowed\n\n"
      "one two \nthree\n> quoted \n> more\n-- \nsig\n");
  EXPECT_EQ(m.body, "one two three\n> quoted more\n-- \nsig");
  m = convert(
      "From: a@example.com\nContent-Type: text/plain; format=flowed; delsp=yes\n\n"
      "日本 \n語\n");
  EXPECT_EQ(m.body, "日本語");
  // Enriched text alone is read as text, and kept as an ".etf" rendering.
  m = convert(
      "From: a@example.com\nContent-Type: text/enriched\n\n<bold>Hi</bold>\nthere\n\n"
      "<<x>\n");
  EXPECT_EQ(m.body, "Hi there\n<x>");
  EXPECT_EQ(attachments(m), "part-1.etf 8bit: <bold>Hi</bold>\nthere\n\n<<x>\n|");
}

TEST(MessageConverterTest, NestedMessagesAddTheirTextAndTheirAttachments) {
  const std::string inner =
      "From: =?utf-8?q?J=C3=B6rg?= <j@example.com>\nTo: b@example.com\nSubject: inner\n"
      "Date: Sun, 6 Jan 2019 09:00:00 +0100\nContent-Type: multipart/mixed; boundary=i\n\n"
      "--i\nContent-Type: text/plain\n\ninner text\n--i\nContent-Type: image/png\n"
      "Content-Transfer-Encoding: base64\n\niVBORw0KGgo=\n--i--\n";
  const ParsedMessage m =
      convert(multipart("multipart/mixed",
                        "--b\nContent-Type: text/plain\n\nouter text\n--b\nContent-Type: "
                        "message/rfc822\n\n" +
                            inner));
  EXPECT_EQ(m.body,
            "outer text\n\n-------- Attached message --------\nFrom: Jörg <j@example.com>\n"
            "To: b@example.com\nDate: Sun, 6 Jan 2019 09:00:00 +0100\nSubject: inner\n\n"
            "inner text");
  // Clean base64 is kept as it was.
  EXPECT_EQ(attachments(m), "part-2.2.png base64 kept: iVBORw0KGgo=\n|");
}

TEST(MessageConverterTest, AttachmentsAreDecodedAndNamed) {
  const ParsedMessage m = convert(multipart(
      "multipart/mixed",
      "--b\nContent-Type: text/plain\n\nbody\n"
      // Quoted-printable binary comes out as bytes, to be written as base64.
      "--b\nContent-Type: application/octet-stream\nContent-Transfer-Encoding: "
      "quoted-printable\nContent-Disposition: attachment; filename=\"C:\\\\tmp\\\\data.bin\"\n\n"
      "=00=FF=10\n"
      // A text attachment becomes UTF-8 text from its charset.
      "--b\nContent-Type: text/csv; charset=iso-8859-1\nContent-Disposition: attachment;\n "
      "filename*0*=iso-8859-1''M%FCnchen%20;\n filename*1=\"list.csv\"\n\n\xE4,\xF6\r\n"
      // Text that holds NUL bytes is binary after all.
      "--b\nContent-Type: text/plain; name=\"=?utf-8?B?w6TDtg==?=.log\"\n\nA\0B\n"
      "--b\nContent-Type: application/ms-tnef\nContent-Transfer-Encoding: base64\n\neJ8+\n"
      "--b\nContent-Type: image/jpeg\nContent-Disposition: inline\n\nx\n"
      // Base64 padded line by line is decoded whole and encoded afresh.
      "--b\nContent-Type: application/octet-stream; name=a.bin\n"
      "Content-Transfer-Encoding: base64\n\nQQ==\nQUI=\n"s));
  EXPECT_EQ(m.body, "body");
  EXPECT_EQ(attachments(m),
            "data.bin base64: \0\xFF\x10|München list.csv 8bit: ä,ö\n|äö.log base64: A\0B|"
            "winmail.dat base64 kept: eJ8+\n|part-6.jpg base64: x|a.bin base64: AAB|"s);
  EXPECT_EQ(m.attachments.at(1).type, "text/csv");
}

TEST(MessageConverterTest, HeaderValuesAreDecodedOntoOneLine) {
  ParsedMessage m = convert(
      "From: \"Doe, Jane\" <jane@example.com>\nFrom: second@example.com\n"
      "To: =?iso-8859-1?q?M=FCller?= <m@example.com>,\n\tteam: x@example.com, y@example.com;\n"
      "Reply-To: Replies <replies@example.com>\nSubject: =?utf-8?B?w6k=?=\n =?utf-8?B?w6k=?= "
      "and\n folded\nContent-Type: text/plain; charset=koi8-r\n\n\xF0\xD2\xC9\xD7\xC5\xD4\n");
  EXPECT_EQ(m.from, "Doe, Jane <jane@example.com>");
  EXPECT_EQ(m.to, "Müller <m@example.com>, x@example.com, y@example.com");
  EXPECT_EQ(m.subject, "éé and folded");
  EXPECT_EQ(m.mailto, "replies@example.com");
  EXPECT_EQ(m.body, "Привет");

  // Raw 8-bit headers are read in the charset of the message's text; Sender stands in for
  // a missing From, and the sender's address for a missing Reply-To.
  m = convert(
      "Sender: =?koi8-r?B?8NLJ18XU?= <s@example.com>\nSubject: \xF0\xD2\xC9\xD7\xC5\xD4\n"
      "Content-Type: text/plain; charset=koi8-r\n\nx\n");
  EXPECT_EQ(m.subject, "Привет");
  EXPECT_EQ(m.from, "Привет <s@example.com>");
  EXPECT_EQ(m.mailto, "s@example.com");
}

TEST(MessageConverterTest, DatesFallBackInOrder) {
  RawMessage raw;
  raw.plistDateSent = 100;
  raw.postmarkDate = 300;
  raw.plistDateReceived = 400;
  raw.fileModified = 500;
  auto date = [&](const std::string& headers) { return MessageDate::of(raw, headers, 600); };
  EXPECT_EQ(date("Date: Thu, 1 Jan 1970 00:00:07 +0000\n"), 7);
  const std::string received =
      "Received: from a by b; Thu, 1 Jan 1970 00:03:20 +0000\nReceived: from c by d;\n "
      "Thu, 1 Jan 1970 00:05:00 +0000\n";
  EXPECT_EQ(date("Date: someday\n" + received), 100);
  raw.plistDateSent.reset();
  EXPECT_EQ(date(received), 200) << "the newest (topmost) Received header";
  EXPECT_EQ(date("Received: from a by b; no date here\n" + received), 200);
  EXPECT_EQ(date(""), 300);
  raw.postmarkDate.reset();
  EXPECT_EQ(date(""), 400);
  raw.plistDateReceived.reset();
  EXPECT_EQ(date(""), 500);
  raw.fileModified.reset();
  EXPECT_EQ(date(""), 600);
}

}  // namespace
}  // namespace quillery::tools
