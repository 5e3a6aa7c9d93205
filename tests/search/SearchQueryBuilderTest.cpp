// The search panel turned into statements, and the search and SQL panel actions that run them.
#include "SearchFixture.h"
#include "SearchRows.h"

namespace quillery::search {
namespace {

using platform::AlertStyle;

class SearchQueryBuilderTest : public SearchFixture,
                               public ::testing::WithParamInterface<SearchRow> {};

TEST_P(SearchQueryBuilderTest, ThePanelBecomesExactlyThisStatement) {
  const SearchRow& row = GetParam();
  row.fill(form);
  builder.makeSearchSQL(form, dbPath);
  ASSERT_FALSE(archive.openFailed);
  EXPECT_EQ(builder.searchSelectSQL, row.select);
  EXPECT_EQ(builder.searchWhereSQL, row.where);
  EXPECT_EQ(builder.searchViewSQL, row.view);
  EXPECT_TRUE(dialogs.alerts.isEmpty());
  // The connection stays open for the list, with the view made on it.
  EXPECT_TRUE(archive.exec(builder.statement()).ok()) << builder.statement().toStdString();
}

INSTANTIATE_TEST_SUITE_P(Rows, SearchQueryBuilderTest, ::testing::ValuesIn(searchRows()),
                         [](const auto& row) { return std::string(row.param.name); });

class SearchActionsTest : public SearchFixture {};

TEST_F(SearchActionsTest, ASearchListsItsHitsAndBrowsingClearsThePanelAndListsAll) {
  add("2021-05-01 00:00:00", "Quarterly report", 1, "Smith <s@x>");
  add("2020-05-01 00:00:00", "Lunch", 0);
  add("2019-05-01 00:00:00", "Old report", 0);
  form.keyWords[SearchForm::Subject] = "REPORT";
  ASSERT_TRUE(search.retrieveEmails(form, dbPath));
  EXPECT_EQ(shownSubjects(), (QStringList{"Old report", "Quarterly report"}));
  EXPECT_EQ(archive.sqlText, builder.statement());
  EXPECT_EQ(progress.events.mid(0, 4),
            (QStringList{"count:0", "controls:0", "controls:count:1", "open:Retrieving..."}));

  form.onlyAttachCheck = true;
  search.retrieveEmails(form, dbPath);
  EXPECT_EQ(shownSubjects(), QStringList{"Quarterly report"});

  // Browsing lists the whole archive and leaves the panel neutral again.
  form.priorityCheck = true;
  ASSERT_TRUE(search.browseDatabase(form, dbPath));
  EXPECT_EQ(list.listCount, 3);
  EXPECT_EQ(form.keyWords[SearchForm::Subject], QString());
  EXPECT_FALSE(form.priorityCheck || form.onlyAttachCheck);
  EXPECT_EQ((QStringList{form.fromAndButton, form.toAndButton, form.subjAndButton,
                         form.mailboxAndButton, form.catAndButton}),
            (QStringList{"OR", "OR", "AND", "AND", "AND"}));

  // While a conversion works through its ids nothing is searched.
  archive.idCount = 2;
  EXPECT_FALSE(search.retrieveEmails(SearchForm{}, dbPath));
  EXPECT_EQ(list.listCount, 3);
}

TEST_F(SearchActionsTest, BadCellsAndBadArchivesGiveTheirAlertsAndChangeNothing) {
  add("2021-05-01 00:00:00", "report", 1);
  const QStringList before = table("email");
  search.retrieveEmails(form, dbPath);
  ASSERT_EQ(list.listCount, 1);

  // A double quote in the from cell breaks the statement: the list's alert, an empty list.
  form.keyWords[SearchForm::From] = "o\"neil";
  search.retrieveEmails(form, dbPath);
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts.last().style, AlertStyle::Critical);
  EXPECT_TRUE(dialogs.alerts.last().message.startsWith("SQL Error: "))
      << dialogs.messages().join('|').toStdString();
  EXPECT_EQ(list.listCount, 0);

  // A quote in the attachment name breaks the view: its alert, and the previous statement
  // (that of the failed search) runs again.
  form = SearchForm{};
  form.keyWords[SearchForm::Subject] = "report";
  search.retrieveEmails(form, dbPath);
  ASSERT_EQ(list.listCount, 1);
  form.keyWords[SearchForm::AttachmentName] = "it's";
  form.keyWords[SearchForm::Subject] = "nothing like it";
  search.retrieveEmails(form, dbPath);
  EXPECT_EQ(dialogs.alerts.last().message.left(11), "SQL error: ");
  EXPECT_EQ(list.listCount, 1);
  EXPECT_EQ(builder.searchViewSQL, QString());

  // A file that is not an archive: its alert, the flag cleared, the list kept.
  const QString notes = dir.filePath("notes.txt");
  ASSERT_TRUE(test::writeFile(notes, "plain text, not a database\n"));
  EXPECT_FALSE(search.retrieveEmails(form, notes));
  EXPECT_EQ(dialogs.alerts.last().message, "This is not a valid database file.");
  EXPECT_FALSE(archive.openFailed);
  EXPECT_EQ(list.listCount, 1);
  EXPECT_EQ(test::readFile(notes), "plain text, not a database\n");
  EXPECT_EQ(table("email"), before);
}

TEST_F(SearchActionsTest, TheSqlPanelShowsTheSearchAndRunsTheUsersCondition) {
  add("2021-05-01 00:00:00", "report", 1);
  add("2022-05-01 00:00:00", "lunch", 0);
  form.keyWords[SearchForm::Subject] = "report";
  const auto shown = sqlQuery.editSqlString(form, dbPath);
  ASSERT_TRUE(shown.has_value());
  EXPECT_EQ(shown->beginSql, "\n\n" + builder.searchSelectSQL);
  EXPECT_EQ(shown->where, R"( WHERE (subj_fld LIKE "%report%") ORDER BY UPPER(date_fld))");

  // Not SQL: the list's alert; corrected, it runs although the failure closed the connection.
  EXPECT_TRUE(sqlQuery.makeSQLString(" WHERE nonsense(", dbPath));
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].message, "SQL Error: incomplete input");
  EXPECT_FALSE(archive.isOpen());
  EXPECT_TRUE(sqlQuery.makeSQLString(" WHERE numAttach=0", dbPath));
  EXPECT_EQ(shownSubjects(), QStringList{"lunch"});
  EXPECT_EQ(builder.searchWhereSQL, " WHERE numAttach=0");

  // An attachment search shows its view first; the view is made again after a failure.
  form.keyWords[SearchForm::AttachmentName] = "pdf";
  attach(1, "a.pdf", "QUJD");
  ASSERT_TRUE(sqlQuery.editSqlString(form, dbPath).has_value());
  EXPECT_TRUE(archive.sqlText.startsWith(viewFor("'%pdf%'") + "\n\nSELECT theID,"));
  sqlQuery.makeSQLString("WHERE", dbPath);
  sqlQuery.makeSQLString("", dbPath);
  EXPECT_EQ(shownSubjects(), QStringList{"report"});

  sqlQuery.showSchema();
  EXPECT_EQ(dialogs.alerts.last().title, "Database Schema");
  EXPECT_TRUE(
      dialogs.alerts.last().message.startsWith("email table\n\tid\t\tINT\n\tfrom_fld\tVARCHAR\n"));
  EXPECT_TRUE(dialogs.alerts.last().message.endsWith("\tnotes_fld\t\tBLOB\n"));
}

}  // namespace
}  // namespace quillery::search
