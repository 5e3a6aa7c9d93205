// The index's words and vocabulary: a piece of text inside a longer word, inside a word too
// long to be kept whole, next to malformed UTF-8 or a NUL byte, in another letter case, in a
// message since deleted, or held by more words than a query takes. Each search is checked
// against its plain statement.
#include "IndexedSearchFixture.h"
#include "archive/WordTokenizer.h"

namespace quillery::search {
namespace {

// 62 characters without a break: kept as overlapping pieces of 32.
const char kLongWord[] = "AbCdEfGhIjKlMnOpQrStUvWxYz0123456789abcdefghijklmnopqrstuvwxyz";

class IndexVocabularyTest : public IndexedSearchFixture {
 protected:
  // Other messages, so that the few a search names are worth narrowing to.
  void SetUp() override {
    IndexedSearchFixture::SetUp();
    for (int i = 0; i < 20; ++i)
      add(QStringLiteral("2019-01-01 00:00:00"), QStringLiteral("other"));
  }
  // Adds a message whose text is the SQL expression `body`; answers its id.
  int withBody(const QString& body) {
    const int id = add(QStringLiteral("2020-01-01 00:00:00"), QStringLiteral("s"));
    EXPECT_TRUE(
        archive.exec(QStringLiteral("UPDATE email SET body_fld=%1 WHERE id=%2").arg(body).arg(id))
            .ok());
    return id;
  }
  static QString literal(const QString& text) { return "'" + text + "'"; }
};

TEST_F(IndexVocabularyTest, PiecesOfWordsAreFoundWhereverTheyLie) {
  withBody(literal("the kitchenette, an Éclair"));
  withBody(literal(QStringLiteral("see https://example.org/%1?x=1 and éclairs").arg(kLongWord)));
  // "Kitchen", a malformed sequence (read as U+FFFD), "ette"; a NUL ends what LIKE reads.
  withBody(QStringLiteral("CAST(X'4B69746368656EFF8065747465206162630078797A7A79' AS TEXT)"));
  const struct {
    const char* name;
    QString text;
    int hits;
  } rows[] = {
      {"InsideALongerWord", "itchenett", 1},
      {"EitherAsciiCase", "KITCHEN", 2},
      {"NonAsciiCaseCounts", "Éclair", 1},
      {"NonAsciiLowerCase", "éclair", 1},
      {"NextToMalformedUtf8", QStringLiteral("chen\uFFFDett"), 1},
      {"PastANulByte", "xyzzy", 0},
      {"StartOfALongWord", "abcdefghij", 1},
      {"AcrossTheFirstPieceEnd", "6789abcdefgh", 1},
      {"AcrossPiecesOfALongWord", "KlMnOpQrStUvWxYz0123456789", 1},
      {"LongerThanAPiece", "CdEfGhIjKlMnOpQrStUvWxYz0123456789abcdefgh", 1},
      {"TheWholeLongWord", "org/" + QString::fromLatin1(kLongWord) + "?x", 1},
      {"ALongWordWithAnotherEnd", QString::fromLatin1(kLongWord) + "x", 0},
      {"NowhereInTheVocabulary", "qwertzuiop", 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(find(row.text).size(), row.hits) << row.name;
}

TEST_F(IndexVocabularyTest, AWordOnlyADeletedMessageHadFindsNothingUntilItComesBack) {
  withBody(literal("a kitchen"));
  const int first = withBody(literal("a zebrafinch here"));
  EXPECT_EQ(find("zebrafinch"), QList<int>{first});
  ASSERT_TRUE(archive.exec(QStringLiteral("DELETE FROM email WHERE id=%1").arg(first)).ok());
  EXPECT_TRUE(find("zebrafinch").isEmpty());
  const int second = withBody(literal("two zebrafinches"));
  EXPECT_EQ(find("ebrafinc"), QList<int>{second});
}

TEST_F(IndexVocabularyTest, ARunHeldByTooManyWordsNarrowsNothing) {
  QStringList words;
  for (int i = 0; i < 300; ++i)
    words.append(QStringLiteral("qqa%1").arg(i, 3, 10, QLatin1Char('0')));
  withBody(literal(words.join(u' ')));
  withBody(literal("qqa"));
  SearchForm f;
  f.keyWords[SearchForm::Body] = "qqa";
  EXPECT_EQ(indexed(f), plain(f));
  EXPECT_FALSE(narrowed(f));
  // A longer run is held by few of them.
  EXPECT_EQ(find("qqa123").size(), 1);
}

TEST(WordTokenizerTest, PatternsGiveTheirFoldedRunsLongestFirst) {
  using R = QList<QByteArray>;
  const struct {
    const char* pattern;
    R runs;
  } rows[] = {
      {"%ab%", {}},
      {"%Ab-cD%", {}},
      {"%ab_cd%", {}},  // "_" ends a run
      {"%KITCHEN tie%", {"kitchen", "tie"}},
      {"%abc%abcdef%abc%", {"abcdef", "abc"}},
      {"%Grüße%", {"grüße"}},  // only ASCII letters fold
      {"%say \"hi\" to%", {"say"}},
  };
  for (const auto& row : rows)
    EXPECT_EQ(archive::WordTokenizer::likeRuns(QString::fromUtf8(row.pattern)), row.runs)
        << row.pattern;
}

}  // namespace
}  // namespace quillery::search
