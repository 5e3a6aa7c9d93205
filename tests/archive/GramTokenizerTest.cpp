// The vocabulary's triples, checked against SQLite itself: for every text and LIKE pattern of a
// table, a message that LIKE matches must hold every gram of the pattern, in an FTS5 table of
// this tokenizer on an in-memory database.
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <QStringList>

#include "archive/GramTokenizer.h"
#include "support/QtPrinters.h"

namespace quillery::archive {
namespace {

class GramTokenizerTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    ASSERT_TRUE(GramTokenizer::registerWith(db));
    run("CREATE VIRTUAL TABLE t USING fts5(x, content='', detail=none, columnsize=0, "
        "tokenize='quillery_grams')");
  }
  void TearDown() override { sqlite3_close(db); }
  int run(const QString& sql, int (*callback)(void*, int, char**, char**) = nullptr,
          void* context = nullptr) {
    return sqlite3_exec(db, sql.toUtf8().constData(), callback, context, nullptr);
  }
  static QString quoted(QString text) {
    return QLatin1Char('\'') + text.replace(QLatin1Char('\''), QLatin1String("''")) +
           QLatin1Char('\'');
  }
  bool likeMatches(const QString& text, const QString& pattern) {
    int matches = 0;
    run(
        QStringLiteral("SELECT %1 LIKE %2").arg(quoted(text), quoted(pattern)),
        [](void* out, int, char** values, char**) {
          *static_cast<int*>(out) = atoi(values[0]);
          return 0;
        },
        &matches);
    return matches == 1;
  }
  // Whether the document with this rowid holds every gram of the pattern.
  bool gramsMatch(int rowid, const QString& pattern) {
    QStringList terms;
    for (const QByteArray& gram : GramTokenizer::likeGrams(pattern))
      terms.append(QLatin1Char('"') + QString::fromUtf8(gram) + QLatin1Char('"'));
    int found = 0;
    run(
        QStringLiteral("SELECT count(*) FROM t WHERE t MATCH %1 AND rowid=%2")
            .arg(quoted(terms.join(QStringLiteral(" AND "))))
            .arg(rowid),
        [](void* out, int, char** values, char**) {
          *static_cast<int*>(out) = atoi(values[0]);
          return 0;
        },
        &found);
    return found == 1;
  }
  sqlite3* db = nullptr;
};

TEST_F(GramTokenizerTest, PatternsNameTheGramsOfTheirWordRuns) {
  using G = QList<QByteArray>;
  const struct {
    const char* pattern;
    G grams;
  } rows[] = {
      {"%ab%", {}},                // too short
      {"%abc%", {"abc"}},          // one triple
      {"%abcd%", {"abc", "bcd"}},  // the triples of a longer run
      {"%kitchen%", {"kit", "itc", "tch", "che", "hen"}},
      {"%Ab-cD%", {}},                     // two runs of two
      {"%ab_cd%", {}},                     // "_" ends a run
      {"%abc%def%", {"abc", "def"}},       // each literal run
      {"%Grüße%", {"Grü", "rüß", "üße"}},  // non-ASCII letters are word characters
      {"%say \"hi\" to%", {"say"}},
      {"%abc abc%", {"abc"}},  // each gram once
  };
  for (const auto& row : rows)
    EXPECT_EQ(GramTokenizer::likeGrams(QString::fromUtf8(row.pattern)), row.grams) << row.pattern;
}

TEST_F(GramTokenizerTest, EveryTextThatLikeMatchesHoldsThePatternsGrams) {
  const QString texts[] = {
      QStringLiteral("The KITCHEN needs paint."),
      QStringLiteral("Viele Grüße, GRÜSSE und grüße aus Zürich"),
      QStringLiteral("un café crème, CAFÉ noir, cafe au lait"),
      QStringLiteral("Please say \"hi\" to 100% of them."),
      QStringLiteral("snake_case and snakeXcase; Ⅻ ﬁnance Kelvin: \u212Aelvin"),
      QStringLiteral("Большой ЖУК, маленький жук. ΑΛΦΑ αλφα"),
      QStringLiteral("word\tword\nnext-line; abc123def 42.5 x@y.org"),
  };
  const QString patterns[] = {
      "%kitchen%", "%KITCHEN%", "%paint.%", "%grüße%",   "%GRÜSSE%",     "%ZÜRICH%",     "%café%",
      "%CAFÉ%",    "%cafe%",    "%\"hi\"%", "%100% of%", "%snake_case%", "%snake%case%", "%Kelvin%",
      "%kelvin%",  "%жук%",     "%ЖУК%",    "%αλφα%",    "%word word%",  "%123def%",     "%42.5%",
      "%y.org%",   "%ext-lin%", "%ﬁnance%", "%Ⅻ%"};
  for (int i = 0; i < int(std::size(texts)); ++i)
    ASSERT_EQ(
        run(QStringLiteral("INSERT INTO t(rowid,x) VALUES(%1,%2)").arg(i).arg(quoted(texts[i]))),
        SQLITE_OK);
  int narrowed = 0;
  for (int i = 0; i < int(std::size(texts)); ++i) {
    for (const QString& pattern : patterns) {
      const bool like = likeMatches(texts[i], pattern);
      const bool grams = GramTokenizer::likeGrams(pattern).isEmpty() || gramsMatch(i, pattern);
      if (like) {
        EXPECT_TRUE(grams) << texts[i].toStdString() << " / " << pattern.toStdString();
      }
      narrowed += !like && !grams;
    }
  }
  // The grams leave out most texts that do not match.
  EXPECT_GT(narrowed, 120);
}

}  // namespace
}  // namespace quillery::archive
