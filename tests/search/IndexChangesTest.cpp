// The search index follows every change to the archive: a store run with the real parser
// tool, a replaced duplicate, deleted messages and attachments, a merge, a conversion, a
// restore, and changes that another program makes between opens or while the archive is open.
// Each search is checked against its plain statement and must be served by the index.
#include <QFile>
#include <QTest>

#include "IndexedMail.h"
#include "IndexedSearchFixture.h"
#include "archive/maintenance/DatabaseMerge.h"
#include "archive/maintenance/FormatConversion.h"
#include "archive/maintenance/Restore.h"

namespace quillery::search {
namespace {

class IndexChangesTest : public IndexedSearchFixture {
 protected:
  // Writes an mbox of the tricky mail and one more message whose text holds `word`.
  QString mbox(const QString& name, const QString& word = {}) {
    const QString path = dir.filePath(name);
    QByteArray bytes = IndexedMail::tricky();
    if (!word.isEmpty())
      bytes += IndexedMail::message(20, "New <new@example.com>", "New", "a " + word + " here");
    EXPECT_TRUE(test::writeFile(path, bytes));
    return path;
  }
  void storeInto(const QString& file, const QStringList& mboxes) {
    ASSERT_TRUE(IndexedMail::store(file, mboxes));
  }
  // The ids of the messages whose text holds the word, read by another program.
  QList<int> scanned(const QString& word) {
    QList<int> ids;
    for (const QString& id :
         test::rowsOf(dbPath, QStringLiteral("SELECT id FROM email WHERE body_fld LIKE '%%1%' "
                                             "ORDER BY upper(date_fld),id")
                                  .arg(word)))
      ids.append(id.toInt());
    return ids;
  }
};

TEST_F(IndexChangesTest, StoredMailIsFoundAtOnceAndAfterTheArchiveOpensAgain) {
  storeInto(dbPath, {mbox("first.mbox")});
  EXPECT_EQ(find("kitchen").size(), 2);
  storeInto(dbPath, {mbox("second.mbox", "zebrafinch")});
  EXPECT_EQ(find("zebrafinch"), scanned("zebrafinch"));
  EXPECT_EQ(find("zebrafinch").size(), 1);
  archive.close();
  EXPECT_EQ(find("zebrafinch").size(), 1);
  EXPECT_EQ(archive.searchIndex().state(), archive::SearchIndex::State::Current);
}

TEST_F(IndexChangesTest, MessagesWrittenOnTheOpenArchiveAreIndexedWhileTheWindowIsIdle) {
  storeInto(dbPath, {mbox("first.mbox")});
  find("kitchen");
  const int added = add("2030-01-01 00:00:00", "late");
  archive.exec(QStringLiteral("UPDATE email SET body_fld='a zebrafinch' WHERE id=%1").arg(added));
  EXPECT_TRUE(archive.searchIndex().needsBuilding());
  QTest::qWait(1000);
  EXPECT_FALSE(archive.searchIndex().needsBuilding());
  EXPECT_EQ(find("zebrafinch"), QList<int>{added});
}

TEST_F(IndexChangesTest, AReplacedDuplicateIsFoundUnderItsNewId) {
  const QString mail = mbox("mail.mbox");
  storeInto(dbPath, {mail});
  const QList<int> before = find("kitchen");
  storeInto(dbPath, {mail});
  const QList<int> after = find("kitchen");
  EXPECT_EQ(after.size(), before.size());
  for (const int id : after)
    EXPECT_FALSE(before.contains(id));
}

TEST_F(IndexChangesTest, DeletedMessagesAndAttachmentsLeaveTheSearchesRight) {
  storeInto(dbPath, {mbox("mail.mbox")});
  const QList<int> found = find("kitchen");
  dialogs.setNextAnswer(0);
  ASSERT_TRUE(deletion.deleteSelected({0}));
  EXPECT_EQ(find("kitchen"), found.mid(1));
  attach(found.last(), "plan.pdf", "cGxhbg==");
  find("kitchen");
  dialogs.setNextAnswer(0);
  ASSERT_TRUE(deletion.deleteAttachments({0}));
  EXPECT_EQ(find("kitchen"), found.mid(1));
}

TEST_F(IndexChangesTest, MergedMessagesAreFound) {
  storeInto(dbPath, {mbox("mail.mbox")});
  find("kitchen");
  const QString other = dir.filePath(QStringLiteral("other.db"));
  storeInto(other, {mbox("other.mbox", "zebrafinch")});
  QFile::remove(other + QStringLiteral(".index"));
  maintenance::DatabaseMerge merge(archive, list, dialogs, progress);
  dialogs.setNextAnswer(0);
  ASSERT_TRUE(merge.mergeFile(dbPath, other));
  EXPECT_EQ(find("zebrafinch"), scanned("zebrafinch"));
  EXPECT_EQ(find("zebrafinch").size(), 1);
  // The other file was only read from: no side file is left beside it.
  EXPECT_FALSE(QFile::exists(other + QStringLiteral(".index")));
}

TEST_F(IndexChangesTest, AConvertedArchiveIsIndexed) {
  archive.close();
  QFile::remove(dbPath);
  ASSERT_EQ(test::execOn(dbPath,
                         "CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld,to_fld,"
                         "subj_fld,date_fld,mailbox,mailto,body_fld);"
                         "CREATE TABLE attachments (id INT,type_fld,filename_fld,encode_fld,"
                         "attach_fld);CREATE TABLE origemail (id INTEGER PRIMARY KEY,orig_fld);"
                         "CREATE TABLE tags (id INTEGER PRIMARY KEY,cat_fld,key_fld,"
                         "priority_fld,notes_fld);"
                         "INSERT INTO email VALUES(7,'a','b','s','2001-01-01 00:00:00','Inbox',"
                         "'a','the kitchen of old');"
                         "INSERT INTO email VALUES(9,'a','b','s','2001-01-02 00:00:00','Inbox',"
                         "'a','no such room')"),
            QString());
  maintenance::FormatConversion conversion(archive, list, dialogs, progress, [](const QString&) {});
  dialogs.setNextAnswer(0);
  ASSERT_TRUE(conversion.convertDBFormat(dbPath));
  EXPECT_EQ(find("kitchen"), QList<int>{7});
}

TEST_F(IndexChangesTest, ARestoredArchiveIsIndexedAnew) {
  storeInto(dbPath, {mbox("mail.mbox")});
  find("kitchen");
  archive.close();
  const QString backup = dbPath + QStringLiteral(".bak");
  ASSERT_TRUE(QFile::copy(dbPath, backup));
  storeInto(dbPath, {mbox("more.mbox", "zebrafinch")});
  EXPECT_EQ(find("zebrafinch").size(), 1);
  maintenance::Restore restore(archive, dialogs, files, progress);
  dialogs.setNextAnswer(0);
  ASSERT_TRUE(restore.restoreDB(dbPath, backup));
  EXPECT_TRUE(find("zebrafinch").isEmpty());
  EXPECT_EQ(find("kitchen"), scanned("kitchen"));
}

TEST_F(IndexChangesTest, AnotherProgramsChangesBetweenOpensAreFound) {
  storeInto(dbPath, {mbox("mail.mbox")});
  const QList<int> kitchen = find("kitchen");
  archive.close();
  ASSERT_EQ(
      test::execOn(dbPath, QStringLiteral("INSERT INTO email (date_fld,from_fld,to_fld,subj_fld,"
                                          "mailbox,mailto,body_fld) VALUES('2030-01-01 00:00:00',"
                                          "'x','y','z','Inbox','x','a zebrafinch');"
                                          "UPDATE email SET body_fld='an okapi' WHERE id=%1;"
                                          "DELETE FROM email WHERE id=%2")
                               .arg(kitchen.first())
                               .arg(kitchen.last())),
      QString());
  EXPECT_EQ(find("zebrafinch"), scanned("zebrafinch"));
  EXPECT_EQ(find("okapi"), QList<int>{kitchen.first()});
  EXPECT_EQ(find("kitchen"), kitchen.mid(1, kitchen.size() - 2));
}

TEST_F(IndexChangesTest, AnotherProgramsChangeWhileTheArchiveIsOpenIsNotMissed) {
  storeInto(dbPath, {mbox("mail.mbox")});
  find("kitchen");
  ASSERT_EQ(test::execOn(dbPath,
                         "INSERT INTO email (date_fld,from_fld,to_fld,subj_fld,mailbox,"
                         "mailto,body_fld) VALUES('2030-01-01 00:00:00','x','y','z',"
                         "'Inbox','x','kitchen zebrafinch')"),
            QString());
  // The connection the search left open does not use what it can no longer trust.
  IndexedSearch through(archive);
  archive.exec(QStringLiteral("BEGIN"));
  const QString statement = builder.statement();
  EXPECT_EQ(through.statementFor(statement), statement);
  archive.exec(QStringLiteral("COMMIT"));
  EXPECT_EQ(find("zebrafinch"), scanned("zebrafinch"));
  EXPECT_EQ(find("kitchen").size(), 3);
}

TEST_F(IndexChangesTest, AnIndexThatAnotherQuilleryEmptiedIsNotTakenForCurrent) {
  storeInto(dbPath, {mbox("mail.mbox")});
  const QList<int> kitchen = find("kitchen");
  // A change on this connection leaves the side file behind the archive until it closes, so
  // another Quillery (quillery-cli) finds the index stale; it is stopped early in its build.
  const auto change = [&] {
    ASSERT_TRUE(archive.exec(QStringLiteral("UPDATE email SET numAttach=1-numAttach")).ok());
  };
  const auto anotherBuilds = [&] {
    archive::Archive other(dialogs, files);
    other.openDB(dbPath);
    other.searchIndex().build(progress, [] { return true; });
  };
  change();
  anotherBuilds();
  EXPECT_EQ(find("kitchen"), kitchen);
  archive.close();
  EXPECT_EQ(find("kitchen"), kitchen);
  // Between the check that the index is usable and the reading of its candidates.
  change();
  archive.exec(QStringLiteral("BEGIN"));
  ASSERT_TRUE(archive.searchIndex().usable());
  anotherBuilds();
  EXPECT_FALSE(archive.searchIndex().prepareCandidates(
      QStringLiteral("SELECT rowid FROM quillery_body_fld WHERE quillery_body_fld MATCH 'kit'")));
  archive.exec(QStringLiteral("COMMIT"));
}

TEST_F(IndexChangesTest, AnIndexWhoseWordsWereReadByOtherRulesIsMadeAgain) {
  storeInto(dbPath, {mbox("mail.mbox")});
  const QList<int> kitchen = find("kitchen");
  archive.close();
  // As a side file of a version whose tokenizers read words otherwise, with the same format.
  ASSERT_EQ(test::execOn(dbPath + ".index", "UPDATE meta SET probe=X'00'"), QString());
  {
    archive::Archive next(dialogs, files);
    next.openDB(dbPath);
    EXPECT_EQ(next.searchIndex().state(), archive::SearchIndex::State::Stale);
  }
  EXPECT_EQ(find("kitchen"), kitchen);
  EXPECT_EQ(archive.searchIndex().state(), archive::SearchIndex::State::Current);
}

TEST_F(IndexChangesTest, TheArchiveKeepsItsFourTablesAndABrokenSideFileIsMadeAgain) {
  storeInto(dbPath, {mbox("mail.mbox")});
  find("kitchen");
  archive.close();
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT type, name FROM sqlite_master ORDER BY name"),
            (QStringList{"table|attachments", "index|attachments_id_idx", "table|email",
                         "index|email_date_idx", "table|origemail", "table|tags"}));
  ASSERT_TRUE(test::writeFile(dbPath + ".index", "not a database"));
  EXPECT_EQ(find("kitchen").size(), 2);
  // A side file that cannot be made leaves every search as it stands, and right.
  archive.close();
  QFile::remove(dbPath + ".index");
  ASSERT_TRUE(QDir().mkdir(dbPath + ".index"));
  SearchForm f;
  f.keyWords[SearchForm::Body] = "kitchen";
  EXPECT_EQ(indexed(f), plain(f));
  EXPECT_FALSE(narrowed(f));
  EXPECT_EQ(archive.searchIndex().state(), archive::SearchIndex::State::Off);
}

}  // namespace
}  // namespace quillery::search
