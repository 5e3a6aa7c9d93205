// The text rules shared by storing, the exports and the merge: escaping, the plist trailer, and the
// line pieces with their two decodings.
#include <gtest/gtest.h>

#include <QList>
#include <initializer_list>

#include "text/LeadingInt.h"
#include "text/LinePieces.h"
#include "text/PlistTrailer.h"
#include "text/SqlEscape.h"
#include "text/Windows1252.h"

namespace quillery::text {
namespace {

// Named cases of a rule that rewrites a text in place.
struct Row {
  const char* name;
  QString in, out;
};
void expectRows(void (*rule)(QString&), std::initializer_list<Row> rows) {
  for (const Row& row : rows) {
    QString text = row.in;
    rule(text);
    EXPECT_EQ(text, row.out) << row.name;
  }
}

TEST(SqlEscapeTest, EscapingDoublesBackslashesFirstThenQuotes) {
  expectRows(SqlEscape::escapeSqlText, {{"windows path", "C:\\temp", "C:\\\\temp"},
                                        {"quotes", "say \"hi\"", "say \"\"hi\"\""},
                                        {"escaped quote stays two characters", "\\\"", "\\\\\"\""},
                                        {"nothing to do", "plain 'single'", "plain 'single'"}});
}

TEST(PlistTrailerTest, StripPlistCutsFromTheXmlNearTheMarker) {
  const QString plist = QStringLiteral(
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple "
      "Computer//DTD PLIST 1.0//EN\">\n<plist/>\n");
  const QString message = QStringLiteral("Subject: s\n\nbody\n");
  const QString early = QStringLiteral("Subject: <?xml in the text\n") + QString(150, 'x') + '\n';
  expectRows(
      PlistTrailer::stripPlist,
      {{"trailer after a message", message + QString(100, 'y') + plist,
        message + QString(100, 'y')},
       {"xml earlier than 100 before the marker is text", early + plist, early},
       {"no marker", message + "<?xml?>", message + "<?xml?>"},
       {"marker within the first 100 characters", plist, plist},
       {"xml found at the very start", "<?xml" + QString(95, ' ') + "Apple Computer//DTD PLIST",
        "<?xml" + QString(95, ' ') + "Apple Computer//DTD PLIST"}});
}

TEST(LinePiecesTest, LongLinesArriveInPiecesAndOnlyStrictUtf8IsTakenAsIs) {
  const QByteArray bytes = "ab\n" + QByteArray(LinePieces::kPieceBytes + 5, 'x') + "\n" + "tail";
  LinePieces pieces(bytes);
  QList<qsizetype> sizes;
  QByteArrayView piece;
  while (pieces.next(piece))
    sizes.append(piece.size());
  EXPECT_EQ(sizes, (QList<qsizetype>{3, LinePieces::kPieceBytes, 6, 4}));
  EXPECT_EQ(LinePieces::decodeAll(bytes), QString::fromLatin1(bytes));
  // A piece cut inside a character, and lines in either encoding, are decoded as the raw
  // source and the message file are (see EmailStoreTest and RecordReaderTest).
  EXPECT_FALSE(LinePieces::strictUtf8("Caf\xe9").has_value());
  EXPECT_EQ(LinePieces::strictUtf8("\xef\xbb\xbfok").value(), "\ufeffok");
  // Windows-1252 decodes every byte; those it leaves undefined become their C1 controls.
  EXPECT_EQ(Windows1252::toString("\x80\x81\x8d\x9f\xa0\xe9\xff"),
            QStringLiteral("€\u0081\u008dŸ\u00a0éÿ"));
}

TEST(LeadingIntTest, CountsDatesAndPrioritiesAreReadAsAtoiReadsThem) {
  const struct {
    const char* name;
    const char* text;
    int value;
  } rows[] = {{"a date gives its year", "2021-11-05 10:00:00", 2021},
              {"blanks before, a line end after", " 123\n", 123},
              {"a sign and text after", "-4x", -4},
              {"no digits", "abc", 0},
              {"empty", "", 0},
              {"beyond int saturates", "99999999999", 2147483647},
              {"below int saturates", "-99999999999", -2147483647 - 1}};
  for (const auto& row : rows)
    EXPECT_EQ(leadingInt(QString::fromUtf8(row.text)), row.value) << row.name;
}

}  // namespace
}  // namespace quillery::text
