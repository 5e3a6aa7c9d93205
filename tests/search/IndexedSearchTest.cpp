// Searches run through the search index and as the plain statement on a stored archive (the
// shared corpus when it is here, and mail written for the index's hard cases) list the same
// messages in the same order, with the same alerts.
#include <QDir>
#include <QFile>

#include "IndexedMail.h"
#include "IndexedSearchFixture.h"
#include "SearchRows.h"
#include "search/IndexedSearch.h"

namespace quillery::search {
namespace {

// The corpus and the tricky mail stored once for the program; each test works on a copy.
QString storedArchive() {
  static QTemporaryDir dir;
  static QString stored;
  if (!stored.isEmpty())
    return stored;
  const QString mbox = dir.filePath(QStringLiteral("tricky.mbox"));
  QFile file(mbox);
  if (!file.open(QIODevice::WriteOnly) || file.write(IndexedMail::tricky()) < 0)
    return {};
  file.close();
  QStringList mboxes{mbox};
  const QString corpus = test::corpusDir();
  if (!corpus.isEmpty()) {
    for (const QString& name : QDir(corpus + "/mbox").entryList({"*.mbox"}, QDir::Files))
      mboxes.append(corpus + "/mbox/" + name);
  }
  const QString path = dir.filePath(QStringLiteral("stored.db"));
  if (IndexedMail::store(path, mboxes))
    stored = path;
  return stored;
}

class IndexedSearchTest : public IndexedSearchFixture {
 protected:
  void SetUp() override {
    const QString stored = storedArchive();
    ASSERT_FALSE(stored.isEmpty()) << "the mail could not be stored";
    QFile::remove(dbPath);
    ASSERT_TRUE(QFile::copy(stored, dbPath));
    IndexedSearchFixture::SetUp();
    // Rows another program might have written: equal dates, dates whose letters differ only
    // in case (so that UPPER makes them equal), and a text that is not valid UTF-8.
    for (const char* date : {"2019-03-05 10:00:00", "2019-03-05 10:00:00", "2019-03-0a 10:00:00",
                             "2019-03-0A 10:00:00", "2019-03-05 10:00:00"})
      addWithBody(date, QStringLiteral("'kitchen tie'"));
    addWithBody("2019-03-06 10:00:00", QStringLiteral("CAST(X'4B69746368656EFF80' AS TEXT)"));
    for (const Emailrow& row : listAll())
      if (row.emailID() % 3 == 0)
        tag(row.emailID());
    ASSERT_TRUE(archive.searchIndex().build(progress));
  }
  void addWithBody(const char* date, const QString& body) {
    ASSERT_TRUE(archive
                    .exec(QStringLiteral("INSERT INTO email (date_fld,from_fld,to_fld,subj_fld,"
                                         "mailbox,mailto,body_fld,numAttach) VALUES('%1','Tie "
                                         "<t@example.com>','bob@example.com','tie','Inbox','t',"
                                         "%2,0)")
                              .arg(QLatin1String(date), body))
                    .ok());
  }
  QList<Emailrow> listAll() {
    retrieve();
    return list.emailRows;
  }
};

struct Row {
  const char* name;
  std::function<void(SearchForm&)> fill;
  bool narrowed;  // the index is expected to serve it
  bool hits;      // the plain statement lists something
};

using F = SearchForm;

const Row kRows[] = {
    {"AsciiLettersMatchInEitherCase", [](F& f) { f.keyWords[F::Body] = "kitchen"; }, true, true},
    {"AsciiLettersMatchTheOtherWay", [](F& f) { f.keyWords[F::Body] = "KITCHEN"; }, true, true},
    {"OtherLettersKeepTheirCase", [](F& f) { f.keyWords[F::Body] = "grüße"; }, true, true},
    {"UpperCaseUmlaut", [](F& f) { f.keyWords[F::Body] = "GRÜSSE"; }, true, true},
    {"AccentsCount", [](F& f) { f.keyWords[F::Body] = "café"; }, true, true},
    {"NoAccentFindsNoAccent", [](F& f) { f.keyWords[F::Body] = "cafe"; }, true, true},
    {"CyrillicCaseCounts", [](F& f) { f.keyWords[F::Body] = "ЖУК"; }, true, true},
    {"GreekSubject", [](F& f) { f.keyWords[F::Subject] = "ΑΛΦΑ"; }, true, true},
    {"QuotesInTheSubject", [](F& f) { f.keyWords[F::Subject] = "say \"hi\""; }, true, true},
    {"QuotesInTheText", [](F& f) { f.keyWords[F::Body] = "say \"hi\" to"; }, true, true},
    {"PerCentIsAWildcard", [](F& f) { f.keyWords[F::Body] = "100% of"; }, true, true},
    {"PerCentAlone", [](F& f) { f.keyWords[F::Body] = "%"; }, false, true},
    {"UnderscoreIsAWildcard", [](F& f) { f.keyWords[F::Body] = "snake_case"; }, true, true},
    {"OneCharacter", [](F& f) { f.keyWords[F::Body] = "k"; }, false, true},
    {"TwoCharacters", [](F& f) { f.keyWords[F::Body] = "ki"; }, false, true},
    {"FromOrSubject",
     [](F& f) {
       f.keyWords[F::From] = "anna";
       f.keyWords[F::Subject] = "figures";
       f.toAndButton = "OR";
     },
     true, true},
    {"SubjectAndText",
     [](F& f) {
       f.keyWords[F::Subject] = "kitchen";
       f.keyWords[F::Body] = "paint";
     },
     true, true},
    {"OrGroupsThenAnd",
     [](F& f) {
       f.keyWords[F::From] = "anna";
       f.keyWords[F::To] = "nobody";
       f.keyWords[F::Subject] = "figures";
       f.keyWords[F::Body] = "kitchen";
       f.fromAndButton = f.toAndButton = "OR";
       f.mailboxAndButton = "AND";
     },
     true, true},
    {"AnOrWithAnUnindexedSideIsNotNarrowed",
     [](F& f) {
       f.keyWords[F::Mailbox] = "box";
       f.keyWords[F::Body] = "kitchen";
       f.mailboxAndButton = "OR";
     },
     false, true},
    {"TagsAndText",
     [](F& f) {
       f.searchCatButton = "Work";
       f.keyWords[F::Body] = "kitchen";
     },
     true, true},
    {"AttachmentNameAndSubject",
     [](F& f) {
       f.keyWords[F::AttachmentName] = "no-such-attachment";
       f.keyWords[F::Subject] = "re";
     },
     false, false},
    {"DateRangeAndText",
     [](F& f) {
       f.beginYr = f.endYr = "2019";
       f.beginMo = f.endMo = "03";
       f.keyWords[F::Body] = "kitchen";
     },
     true, true},
    {"ACellTextWithItsOwnQuotes",
     [](F& f) { f.keyWords[F::From] = "anna\" OR from_fld LIKE \"%zoe"; }, true, true},
    {"AnUnbalancedQuoteFailsAlike", [](F& f) { f.keyWords[F::From] = "anna\""; }, false, false},
    {"ALongText", [](F& f) { f.keyWords[F::Body] = "the quarterly report of the kitchen garden"; },
     true, true},
    {"BrowseWithEqualDates", [](F&) {}, false, true},
};

TEST_F(IndexedSearchTest, EverySearchListsWhatThePlainStatementLists) {
  for (const Row& row : kRows) {
    SearchForm f;
    row.fill(f);
    const Listing expected = plain(f);
    EXPECT_EQ(!expected.ids.isEmpty(), row.hits) << row.name;
    EXPECT_EQ(indexed(f), expected) << row.name;
    EXPECT_EQ(narrowed(f), row.narrowed) << row.name;
  }
  // The search panel's own table, on the corpus when it is here.
  for (const SearchRow& row : searchRows()) {
    SearchForm f;
    row.fill(f);
    EXPECT_EQ(indexed(f), plain(f)) << row.name;
  }
}

TEST_F(IndexedSearchTest, AStatementThatTheIndexCannotServeRunsAsItStands) {
  IndexedSearch through(archive);
  const QString head = QStringLiteral(
      "SELECT email.id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' "
      "ELSE mailbox END),numAttach FROM email ");
  const QString statements[] = {
      head + R"( WHERE (body_fld NOT LIKE "%kitchen%") ORDER BY UPPER(date_fld))",
      head + R"( WHERE (body_fld LIKE "%kitchen%" ESCAPE "\") ORDER BY UPPER(date_fld))",
      head + R"( WHERE (body_fld LIKE "%kitchen%") ORDER BY date_fld)",
      head + R"( WHERE (body_fld LIKE "%kitchen%"); DELETE FROM email)",
      head + R"( WHERE (body_fld LIKE "body_fld") ORDER BY UPPER(date_fld))",
      head + R"( WHERE (body_fld LIKE "%)" + QString(60000, QLatin1Char('k')) +
          R"(%") ORDER BY UPPER(date_fld))",
      QStringLiteral("SELECT id FROM email WHERE body_fld LIKE \"%kitchen%\""),
  };
  archive.exec(QStringLiteral("BEGIN"));
  for (const QString& statement : statements)
    EXPECT_EQ(through.statementFor(statement), statement) << statement.left(160).toStdString();
  // A temporary table of the archive's name would stand in for it.
  archive.exec(QStringLiteral("CREATE TEMP TABLE email(id)"));
  const QString search = head + R"( WHERE (body_fld LIKE "%kitchen%") ORDER BY UPPER(date_fld))";
  EXPECT_EQ(through.statementFor(search), search);
  archive.exec(QStringLiteral("ROLLBACK"));
}

}  // namespace
}  // namespace quillery::search
