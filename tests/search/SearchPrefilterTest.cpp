// How the builder's statements are read: which part narrows the messages, and how AND, OR and
// brackets combine the narrowing parts as SQLite's precedence does.
#include <gtest/gtest.h>

#include "search/SearchPrefilter.h"
#include "support/QtPrinters.h"

namespace quillery::search {
namespace {

const QStringList kColumns = {"id",      "from_fld", "to_fld",   "subj_fld", "date_fld",
                              "mailbox", "mailto",   "body_fld", "numAttach"};

// The vocabulary: most runs are words of their own; "two" lies in two words, "none" in none, and
// "many" in too many.
std::optional<QList<QByteArray>> wordsHolding(const QByteArray& run) {
  if (run == "many")
    return std::nullopt;
  if (run == "two")
    return QList<QByteArray>{"two", "twofold"};
  return run == "none" ? QList<QByteArray>() : QList<QByteArray>{run};
}

QString body(const char* word) {
  return QStringLiteral(
             "SELECT rowid FROM quillery_body_fld WHERE quillery_body_fld MATCH '\"%1\"'")
      .arg(QLatin1String(word));
}
QString subject(const char* word) {
  return QStringLiteral(
             "SELECT rowid FROM quillery_subj_fld WHERE quillery_subj_fld MATCH '\"%1\"'")
      .arg(QLatin1String(word));
}
QString both(const QString& a, const char* op, const QString& b) {
  return "SELECT * FROM (" + a + ") " + op + " SELECT * FROM (" + b + ")";
}

TEST(SearchPrefilterTest, ConditionsNarrowAsSqliteCombinesThem) {
  const struct {
    const char* where;
    QString candidates;
  } rows[] = {
      {R"( WHERE (body_fld LIKE "%abc%"))", body("abc")},
      {R"( WHERE (BODY_FLD like "%abc%"))", body("abc")},
      {R"( WHERE (body_fld LIKE "%abc%" AND subj_fld LIKE "%xyz%"))",
       both(body("abc"), "INTERSECT", subject("xyz"))},
      {R"( WHERE (body_fld LIKE "%abc%" OR subj_fld LIKE "%xyz%"))",
       both(body("abc"), "UNION", subject("xyz"))},
      // AND binds closer than OR: a side that narrows nothing makes the OR narrow nothing.
      {R"( WHERE (mailbox LIKE "%box%" OR body_fld LIKE "%abc%" AND subj_fld LIKE "%xyz%"))", {}},
      {R"( WHERE (mailbox LIKE "%box%" OR body_fld LIKE "%abc%") AND (subj_fld LIKE "%xyz%"))",
       subject("xyz")},
      {R"(WHERE date_fld >= "2005-03-01 00:00:00" AND date_fld <= "2005-03-31 99:99:99" AND (body_fld LIKE "%abc%"))",
       body("abc")},
      {R"( WHERE (body_fld LIKE "%ab%"))", {}},
      {R"( WHERE (body_fld LIKE "%ABC%two%"))",
       R"(SELECT rowid FROM quillery_body_fld WHERE quillery_body_fld MATCH '"abc" AND ("two" OR "twofold")')"},
      {R"( WHERE (body_fld LIKE "%many%abc%"))", body("abc")},
      {R"( WHERE (body_fld LIKE "%many%"))", {}},
      {R"( WHERE (body_fld LIKE "%none%many%"))", "SELECT rowid FROM quillery_body_fld WHERE 0"},
      {R"(WHERE date_fld >= "2005" AND date_fld <= "2006")", {}},
  };
  for (const auto& row : rows) {
    const QString statement =
        SearchPrefilter::kSelectEmail + QString::fromUtf8(row.where) + " ORDER BY UPPER(date_fld)";
    const std::optional<SearchPrefilter> read =
        SearchPrefilter::read(statement, kColumns, 50000, wordsHolding);
    ASSERT_TRUE(read) << row.where;
    EXPECT_EQ(read->candidates, row.candidates) << row.where;
    EXPECT_TRUE(statement.contains(read->condition)) << row.where;
  }
}

TEST(SearchPrefilterTest, TagSearchesJoinAndEverythingElseIsRefused) {
  const QString tags = SearchPrefilter::kSelectEmailTags +
                       R"( WHERE email.id=tags.id AND (cat_fld LIKE "%Work%" AND priority_fld=3) )"
                       R"(AND (body_fld LIKE "%abc%") ORDER BY UPPER(date_fld))";
  const std::optional<SearchPrefilter> read =
      SearchPrefilter::read(tags, kColumns, 50000, wordsHolding);
  ASSERT_TRUE(read);
  EXPECT_TRUE(read->withTags);
  EXPECT_EQ(read->candidates, body("abc"));
  const char* refused[] = {
      R"( WHERE (body_fld LIKE "%abc%") ORDER BY date_fld)",
      R"( WHERE (body_fld LIKE '%abc%') ORDER BY UPPER(date_fld))",
      R"( WHERE (body_fld LIKE "%abc%") -- ORDER BY UPPER(date_fld))",
      R"( WHERE (cat_fld LIKE "%abc%") ORDER BY UPPER(date_fld))",  // no tags table here
      R"( WHERE (body_fld LIKE "subj_fld") ORDER BY UPPER(date_fld))",
      R"( WHERE (body_fld LIKE "%abcdef%") ORDER BY UPPER(date_fld))",  // longer than the limit
  };
  for (const char* where : refused)
    EXPECT_FALSE(SearchPrefilter::read(SearchPrefilter::kSelectEmail + QString::fromUtf8(where),
                                       kColumns, 7, wordsHolding))
        << where;
}

}  // namespace
}  // namespace quillery::search
