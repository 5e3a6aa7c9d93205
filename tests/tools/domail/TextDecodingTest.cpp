// Table-driven checks of the pieces that turn mail text into record text: dates, encoded
// header words, charsets, MIME parameters, HTML, and the pacing of the searching status.
#include <gtest/gtest.h>

#include "domail/Base64Text.h"
#include "domail/CharsetDecoder.h"
#include "domail/HeaderText.h"
#include "domail/HtmlText.h"
#include "domail/MailDate.h"
#include "domail/MimeParameters.h"
#include "domail/RecordFormat.h"
#include "domail/StatusPacer.h"

namespace quillery::tools {
namespace {

TEST(TextDecodingTest, MailDatesInTheFormsMailUses) {
  setenv("TZ", "America/New_York", 1);
  tzset();
  EXPECT_EQ(MailDate::localText(1'547'028'000), "2019-01-09 05:00:00");
  setenv("TZ", "UTC", 1);  // the table below is in UTC
  tzset();
  EXPECT_EQ(MailDate::localText(1'547'028'000), "2019-01-09 10:00:00");
  const std::pair<const char*, const char*> table[] = {
      {"Mon, 7 Jan 2019 10:00:00 +0000", "2019-01-07 10:00:00"},
      {"7 Jan 2019 10:00 -0130", "2019-01-07 11:30:00"},
      {"Fri, 19 Mar 2010 17:10:49 +0900 (JST)", "2010-03-19 08:10:49"},
      {"Tue, 17 Jul 2012 22:23:35.882 0000", "2012-07-17 22:23:35"},
      {"Wed, 15 Jun 05 10:00:00 EDT", "2005-06-15 14:00:00"},
      {"Thu, 1 Jan 99 00:00:00 GMT", "1999-01-01 00:00:00"},
      {"Thu, 1 Jan 101 00:00:00 GMT", "2001-01-01 00:00:00"},
      {"Sun Jan  2 11:02:19 2022", "2022-01-02 11:02:19"},
      {"2022-01-02T11:02:19+01:00", "2022-01-02 10:02:19"},
      {"2-Jan-2022 11:02:19 CEST", "2022-01-02 09:02:19"},
      {"Monday, January 7, 2019 10:00 PM +0000", "2019-01-07 22:00:00"},
      {"Sat, 29 Feb 2020 23:59:60 +0000", "2020-02-29 23:59:59"},
      {"Tue, 35 Aug 2007 10:56:21 +0900", "none"},
      {"Pn, 29 paX 2007 21:13:00 +0100", "none"},
      {"Fri, 29 Feb 2019 10:00:00 +0000", "none"},
      {"Mon, 7 Jan 2019 25:00:00 +0000", "none"},
      {"Mon, 7 Jan 1850 10:00:00 +0000", "none"},
      {"", "none"},
  };
  for (const auto& [text, expected] : table) {
    const std::optional<std::time_t> when = MailDate::parse(text);
    EXPECT_EQ(when ? MailDate::localText(*when) : "none", expected) << text;
  }
}

TEST(TextDecodingTest, HeaderWordsAndParametersDecodeToOneLine) {
  CharsetDecoder decoder;
  HeaderText text(decoder);
  const std::tuple<const char*, const char*, const char*> table[] = {
      {"=?ISO-8859-1?Q?Andr=E9?= Pirard", "", "André Pirard"},
      {"=?utf-8?b?w6k=?=  \r\n =?utf-8?b?w6k=?=", "", "éé"},
      // A character split over two words of one charset survives.
      {"=?utf-8?B?4oK=?= =?utf-8?B?rA==?=", "", "€"},
      {"=?utf-8?q?a_b?= c =?utf-8?q?d?=", "", "a b c d"},
      {"x=?utf-8?q?=C3=A9?=y", "", "xéy"},
      {"=?koi8-r*ru?B?8NLJ18XU?=", "", "Привет"},
      {"=?unknown-charset?Q?caf=C3=A9?=", "", "café"},
      {"=?utf-8?Q?broken", "", "=?utf-8?Q?broken"},
      {"Caf\xE9 \x80", "", "Café €"},
      {"\xF0\xD2\xC9\xD7\xC5\xD4", "koi8-r", "Привет"},
      {"tab\there\r\n\tfolded =?utf-8?q?line=0Aend?=", "", "tab here folded line end"},
      {"=?iso-2022-jp?B?GyRCLSEbKEI=?=", "", "①"},
  };
  for (const auto& [raw, fallback, expected] : table) {
    EXPECT_EQ(text.decode(raw, fallback), expected) << raw;
  }
  EXPECT_EQ(text.decodeForAddresses("=?utf-8?q?Doe=2C_J=22?= <d@x>, \"=?utf-8?q?A?=\" <a@x>"),
            "\"Doe, J\\\"\" <d@x>, \"A\" <a@x>");

  // Parameters with continuations and broken quotes.
  const MimeParameters p(
      "Attachment;\r\n filename*1*=%20b%C3%A4r.txt; filename*0*=utf-8'de'f%C3%B6o;\r\n"
      " name=\"=?utf-8?q?x=C3=A9?=\"; size=12; broken=\"no end");
  EXPECT_EQ(p.token(), "attachment");
  EXPECT_EQ(p.decoded("FILENAME", text), "föo bär.txt");
  EXPECT_EQ(p.decoded("name", text), "xé");
  EXPECT_EQ(p.raw("size"), "12");
  EXPECT_EQ(p.raw("broken"), "no end");
  EXPECT_FALSE(p.decoded("missing", text).has_value());
  EXPECT_EQ(MimeParameters("text/plain; name=report final.pdf;").raw("name"), "report final.pdf");
  EXPECT_EQ(MimeParameters("a; name*=''%41%4").decoded("name", text), "A%4");
}

TEST(TextDecodingTest, CharsetsFallBackWithoutLosingText) {
  CharsetDecoder decoder;
  const std::tuple<std::string, const char*, const char*> table[] = {
      {"caf\xC3\xA9", "iso-8859-1", "café"},  // mislabelled UTF-8 wins
      {"caf\xE9 \x93q\x94", "", "café “q”"},
      {"caf\xE9", "utf-8", "café"},
      {"\x83\x65\x83\x58\x83\x67", "Shift_JIS", "テスト"},
      {"\xC4\xE3\xBA\xC3", "gb2312", "你好"},
      {"\xBE\xC8\xB3\xE7", "ks_c_5601-1987", "안녕"},
      {"\x1b$B$3$s\x1b(B", "ISO-2022-JP", "こん"},
      {"D\x8a", "iso-2022-jp", "DŠ"},  // 8-bit bytes where only 7 may be
      {"\xF0\xD2", "koi8-r", "Пр"},
      {"ok\xFF", "x-no-such-charset", "okÿ"},
      {"\xA4\xA2\xFF", "euc-jp", "あ\xEF\xBF\xBD"},
  };
  for (const auto& [bytes, charset, expected] : table) {
    EXPECT_EQ(decoder.toUtf8(bytes, charset), expected) << charset;
  }
  EXPECT_FALSE(CharsetDecoder::isValidUtf8("\xC0\xAF"));      // overlong
  EXPECT_FALSE(CharsetDecoder::isValidUtf8("\xED\xA0\x80"));  // surrogate
  EXPECT_TRUE(CharsetDecoder::isValidUtf8("\xF0\x9F\x8E\x85"));
}

TEST(TextDecodingTest, Base64IsDecodedWholeAndPassedOnOnlyWhenClean) {
  EXPECT_EQ(Base64Text::decode("QUJD"), "ABC");
  EXPECT_EQ(Base64Text::decode("QQ==\r\nQUI="), "AAB") << "blocks encoded one after another";
  EXPECT_EQ(Base64Text::decode("Q U\nJ*D"), "ABC");
  EXPECT_EQ(Base64Text::decode("QUI"), "AB");
  std::string out;
  EXPECT_TRUE(Base64Text::clean("QUJD\r\n\r\nQUI= \n", out));
  EXPECT_EQ(out, "QUJD\nQUI=\n");
  for (const char* dirty : {"QQ==\nQUI=", "QU*D", "QUJDQ", "", "Q===", "QUJD\nQUI=\nQ"}) {
    EXPECT_FALSE(Base64Text::clean(dirty, out)) << dirty;
  }
}

TEST(TextDecodingTest, HtmlReadsAsText) {
  const std::pair<const char*, const char*> table[] = {
      {"<p>One</p><p>Two&nbsp;&amp; <b>three</b></p>", "One\n\nTwo & three"},
      {"<html><head><title>T</title><style>p{}</style></head><body>x<br>y</body>", "x\ny"},
      {"a<script>var s='<p>';</script>b<!-- <p>c --> d", "ab d"},
      {"<ul><li>one<li>two</ul>", "* one\n* two"},
      {"<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>", "a b\nc"},
      {"<pre>  keep\n   this</pre>after", "  keep\n   this\n\nafter"},
      {"&#233;&#xE9;&eacute;&#150;&bogus; 1 < 2", "ééé–&bogus; 1 < 2"},
      {"<div>unclosed <b", "unclosed"},
      {"text   with\n\n  spaces", "text with spaces"},
  };
  for (const auto& [html, expected] : table) {
    EXPECT_EQ(HtmlText::toText(html), expected) << html;
  }
  std::string html = "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=koi8-r\">";
  EXPECT_EQ(HtmlText::declaredCharset(html), "koi8-r");
  HtmlText::declareUtf8(html);
  EXPECT_EQ(html, "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=utf-8\">");
  EXPECT_EQ(HtmlText::declaredCharset("<meta charset='Shift_JIS'/>"), "Shift_JIS");
  EXPECT_EQ(HtmlText::declaredCharset("<p>charset=x</p>"), "");
}

TEST(TextDecodingTest, AnnouncementsStayShortAndAnswerable) {
  // é would straddle the limit.
  EXPECT_EQ(RecordFormat::announcement("/m/INBOX", std::string(999, 'x') + "é"),
            "/m/INBOX\n" + std::string(999, 'x'));
  EXPECT_EQ(RecordFormat::announcement("/m/attachment", ""), "/m/attachment\n ");
  EXPECT_EQ(RecordFormat::announcement("/m/x", "Looking for email"), "/m/x\nLooking for email ");
  EXPECT_EQ(RecordFormat::announcement("/m/\xE9\n", "s"), "/m/é\ns");
}

TEST(TextDecodingTest, SearchingIsSaidOnlyAfterSilenceAndOncePerPause) {
  using namespace std::chrono_literals;
  const StatusPacer::Clock::time_point t0{};
  StatusPacer pacer(700ms, 40ms);
  pacer.wrote(t0);
  EXPECT_FALSE(pacer.searchingDue(t0 + 699ms));
  EXPECT_TRUE(pacer.searchingDue(t0 + 700ms));
  EXPECT_FALSE(pacer.searchingDue(t0 + 5s)) << "once until something else is written";
  EXPECT_EQ(pacer.settleLeft(t0 + 710ms), 30ms);
  EXPECT_EQ(pacer.settleLeft(t0 + 800ms), 0ms);
  pacer.wrote(t0 + 6s);
  EXPECT_EQ(pacer.settleLeft(t0 + 6s), 0ms);
  EXPECT_FALSE(pacer.searchingDue(t0 + 6s + 100ms));
  EXPECT_TRUE(pacer.searchingDue(t0 + 7s));
}

}  // namespace
}  // namespace quillery::tools
