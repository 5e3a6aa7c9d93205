// Merging archive files stored from real mail, and archives built with SQL for the cases the
// parser tool never makes, with faults injected into the statements.
#include <QSignalSpy>

#include "MaintenanceFixture.h"
#include "archive/maintenance/DatabaseMerge.h"

namespace quillery::maintenance {
namespace {

class DatabaseMergeTest : public MaintenanceFixture {
 protected:
  // Merges and records what the list window was told, as "closed", "shown" and titles.
  bool merge(const QString& mergePath) {
    DatabaseMerge merge(archive, list, dialogs, progress);
    QObject::connect(&merge, &DatabaseMerge::storePanelClosed, [this] { panel.append("closed"); });
    QObject::connect(&merge, &DatabaseMerge::storePanelShown, [this] { panel.append("shown"); });
    QObject::connect(&merge, &DatabaseMerge::storePanelTitleChanged,
                     [this](const QString& title) { panel.append(title); });
    return merge.mergeFile(dbPath, mergePath);
  }
  QString question(const QString& mergePath) const {
    return "Merge Database Files|Do you want to merge:\n" + mergePath + "\nInto:\n" + dbPath + '?';
  }
  static QString done(int processed, int duplicates) {
    return QStringLiteral("Done Merging Email|Processed: %1\nDuplicates: %2\n")
        .arg(processed)
        .arg(duplicates);
  }
  // An archive made by openDB, with the rows the statements put in.
  void makeArchive(const QString& file, const QString& rows) {
    archive::Archive maker(dialogs, files);
    maker.openDB(file);
    ASSERT_TRUE(maker.exec(rows).ok()) << file.toStdString();
  }
  QStringList listedIds() const {
    QStringList ids;
    for (const search::Emailrow& row : list.emailRows)
      ids.append(QString::number(row.emailID()));
    return ids;
  }
  QStringList panel;
};

TEST_F(DatabaseMergeTest, StoredMailIsMergedOnceWithTagsSourcesAndAttachmentsUnderNewIds) {
  const QString mergePath = path(QStringLiteral("other computer.db"));
  storeGenerated(mergePath, 30);
  storeGenerated(dbPath, 15);
  // Tags on a new message, on one whose tag fields are all empty, and on a duplicate.
  ASSERT_EQ(test::execOn(mergePath,
                         "INSERT INTO tags VALUES(21,'Work','a \"b\" c\\d',2,'n');"
                         "INSERT INTO tags VALUES(22,'','',NULL,'');"
                         "INSERT INTO tags VALUES(3,'Old','',1,'');"),
            QString());
  ASSERT_EQ(test::rowsOf(mergePath, "SELECT subj_fld FROM email WHERE id IN (21,22)"),
            (QStringList{"Message 20 of the run", "Message 21 of the run"}));
  const QStringList before = messages(dbPath);
  const int lastId = maxId(dbPath);

  ASSERT_TRUE(merge(mergePath));
  EXPECT_EQ(takeAlerts(), (QStringList{question(mergePath), done(30, 15)}));
  EXPECT_EQ(panel, (QStringList{"closed", "merging database...", "shown", "done merging..."}));
  // Every new message arrives once with all it carries under a new id, each text as it was
  // but for its backslashes: a text put into a statement has them doubled, and SQLite keeps
  // both.
  const QStringList copied = messages(dbPath, QStringLiteral("WHERE id>%1").arg(lastId));
  QStringList expected = messages(mergePath, "WHERE id>15");
  expected.replaceInStrings(QStringLiteral("\\"), QStringLiteral("\\\\"));
  EXPECT_EQ(copied, expected);
  QStringList all = before + copied;
  all.sort();
  EXPECT_EQ(messages(dbPath), all);
  EXPECT_EQ(integrity(dbPath), "ok");
  // The list shows exactly the copied messages, tagged dates marked.
  EXPECT_EQ(listedIds(),
            test::rowsOf(dbPath, QStringLiteral("SELECT id FROM email WHERE id>%1").arg(lastId)));
  EXPECT_EQ(archive.idList, listedIds());
  QStringList starred;
  for (const search::Emailrow& row : list.emailRows)
    if (row.emailDate().endsWith('*'))
      starred.append(row.emailSubject());
  EXPECT_EQ(starred, (QStringList{"Message 20 of the run", "Message 21 of the run"}));
  EXPECT_EQ(list.listCountText() + list.dbCountText(),
            "15 emails in this list.30 emails in the database.");
  EXPECT_FALSE(progress.isOpen);
  EXPECT_EQ(archive.idCount, 0);
  EXPECT_TRUE(archive.isOpen());

  // The second time every message is there already.
  ASSERT_TRUE(merge(mergePath));
  EXPECT_EQ(takeAlerts().value(1), done(30, 30));
  EXPECT_EQ(messages(dbPath), all);
  EXPECT_TRUE(list.emailRows.isEmpty());
}

TEST_F(DatabaseMergeTest, TheSharedCorpusMergesIntoAnEmptyArchiveOnceForEachDateToAndFrom) {
  if (test::corpusDir().isEmpty())
    GTEST_SKIP() << "the shared mail corpus is absent (../shared/corpus or QUILLERY_CORPUS)";
  const QString mergePath = path(QStringLiteral("corpus.db"));
  QStringList mboxes;
  for (const char* name :
       {"users_ponymail_apache_org_2022-01", "users_ponymail_apache_org_2019-09",
        "dev_ponymail_apache_org_2020-10", "netscape-1996-content-length", "unmunged-from-lines"})
    mboxes.append(test::corpusDir() + "/mbox/" + name + ".mbox");
  store(mergePath, mboxes);
  const QStringList processedAndRepeated =
      test::rowsOf(mergePath,
                   "SELECT count(*), count(*) - (SELECT count(*) FROM (SELECT DISTINCT date_fld,"
                   "to_fld,from_fld FROM email)) FROM email");
  ASSERT_TRUE(merge(mergePath));
  // Corpus messages that share date, To and From with an earlier one count as duplicates.
  EXPECT_EQ(messages(dbPath), messages(mergePath,
                                       "WHERE id IN (SELECT min(id) FROM email GROUP "
                                       "BY date_fld,to_fld,from_fld)"));
  const QStringList counted = processedAndRepeated.value(0).split('|');
  EXPECT_EQ(takeAlerts().value(1), done(counted.value(0).toInt(), counted.value(1).toInt()));
  EXPECT_EQ(integrity(dbPath), "ok");
}

TEST_F(DatabaseMergeTest, DuplicatesTakeAMissingSourceOnlyFromAMergeFileThatKeepsSources) {
  makeArchive(dbPath,
              "INSERT INTO email VALUES(7,'f@x','t@x','s','2020-01-01 10:00:00','In',"
              "'f@x','body',0);");
  const QString withSources = path(QStringLiteral("with sources.db"));
  makeArchive(withSources,
              "INSERT INTO email VALUES(1,'f@x','t@x','other subject','2020-01-01 10:00:00','X',"
              "'f@x','other body',0);"
              "INSERT INTO origemail VALUES(1,'Subject: s');"
              "INSERT INTO email VALUES(2,'g@x','\"Bob\" <b@x>','quoted To','2020-01-02 10:00:00',"
              "'In','g@x','b',0);"
              "INSERT INTO email VALUES(3,'h@x','t@x','new','2020-01-03 10:00:00','In','h@x',"
              "'b',1);"
              "INSERT INTO origemail VALUES(3,'ab');"
              "INSERT INTO attachments VALUES(3,'text/plain','two\nlines.txt','0','a \"q\"');");
  ASSERT_TRUE(merge(withSources));
  const QStringList shown = takeAlerts();
  ASSERT_EQ(shown.size(), 3);
  EXPECT_TRUE(shown[1].startsWith("|SQL Error: near \"Bob\"")) << shown[1].toStdString();
  EXPECT_EQ(shown[2], done(3, 1));
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT id, orig_fld FROM origemail"),
            QStringList{"7|Subject: s"});
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT id, subj_fld FROM email"),
            (QStringList{"7|s", "8|new"}));  // the quoted To was not copied
  // A source of two characters is none; a file name loses its line ends.
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT * FROM attachments"),
            QStringList{"8|text/plain|twolines.txt|0|a \"q\""});
  ASSERT_EQ(list.emailRows.size(), 1);
  EXPECT_EQ(list.emailRows[0].emailAtch(), 1);

  // Without sources in the merge file a duplicate is passed over uncounted.
  const QString withoutSources = path(QStringLiteral("without sources.db"));
  makeArchive(withoutSources,
              "INSERT INTO email VALUES(5,'h@x','t@x','new','2020-01-03 "
              "10:00:00','In','h@x','b',1);");
  ASSERT_TRUE(merge(withoutSources));
  EXPECT_EQ(takeAlerts().value(1), done(1, 0));
  EXPECT_EQ(counts(dbPath), "2|1|1|0");
}

TEST_F(DatabaseMergeTest, WhatIsNotMergedIsRefusedBeforeTheArchiveIsTouched) {
  makeArchive(dbPath,
              "INSERT INTO email VALUES(1,'f','t','s','2020-01-01 00:00:00','m','r','b',0)");
  const QString text = path(QStringLiteral("notes.txt"));
  ASSERT_TRUE(test::writeFile(text, "not an archive"));
  const QString bare = path(QStringLiteral("bare.db"));
  ASSERT_EQ(test::execOn(bare, archive::Archive::kCreateEmail), QString());
  const QString sameFile = dir.filePath(QStringLiteral("./archive.db"));

  const QString sameAlert =
      "|Merge file is the same as your database file.  Choose a different "
      "merge file.";
  const struct {
    const char* name;
    QString mergePath;
    int answer;
    QStringList alerts;
    QStringList panel;
  } rows[] = {
      {"the archive itself", dbPath, 0, {sameAlert}, {}},
      {"the archive by another path", sameFile, 0, {sameAlert}, {}},
      {"the user cancels", bare, 1, {question(bare)}, {}},
      {"a text file",
       text,
       0,
       {question(text), "Open Failed|This is not a valid database file."},
       {"closed", "merging database...", "shown", "closed"}},
  };
  for (const auto& row : rows) {
    panel.clear();
    dialogs.setNextAnswer(row.answer);
    EXPECT_FALSE(merge(row.mergePath)) << row.name;
    EXPECT_EQ(takeAlerts(), row.alerts) << row.name;
    EXPECT_EQ(panel, row.panel) << row.name;
    EXPECT_EQ(integrity(dbPath) + counts(dbPath), "ok1|0|0|0") << row.name;
    EXPECT_FALSE(archive.openFailed) << row.name;
  }
  EXPECT_EQ(test::readFile(text), "not an archive");

  // A merge file that stops being an archive between its check and its attachment.
  const QString swapped = path(QStringLiteral("swapped.db"));
  makeArchive(swapped, "SELECT 1");
  progress.onEvent = [&](const QString& event) {
    if (event == "open:Merging...")
      test::writeFile(swapped, "no longer an archive");
  };
  EXPECT_FALSE(merge(swapped));
  EXPECT_EQ(takeAlerts().value(1), "Merge Failed|" + swapped + " is not a valid database file.");
  EXPECT_EQ(integrity(dbPath) + counts(dbPath), "ok1|0|0|0");
  progress.onEvent = nullptr;

  // An archive that fails to open still leaves the merge file its missing tables.
  makeOldFormat(path(QStringLiteral("old.db")), QString());
  dbPath = path(QStringLiteral("old.db"));
  EXPECT_FALSE(merge(bare));
  EXPECT_EQ(takeAlerts().value(1),
            "Open Failed|" + QString::fromUtf8(archive::Archive::kOldFormatMessage));
  EXPECT_EQ(test::rowsOf(bare, "SELECT count(*) FROM sqlite_master WHERE type='table'"),
            QStringList{"4"});
  EXPECT_FALSE(archive.isOpen());

  // While another id list is pending nothing is asked at all.
  archive.idCount = 3;
  dialogs.setNextFileNames({bare});
  EXPECT_FALSE(DatabaseMerge(archive, list, dialogs, progress).mergeDB(dbPath));
  EXPECT_TRUE(dialogs.openPanels.isEmpty());
  archive.idCount = 0;
  EXPECT_FALSE(DatabaseMerge(archive, list, dialogs, progress).mergeDB(dbPath));
  ASSERT_EQ(dialogs.openPanels.size(), 1);
  EXPECT_EQ(dialogs.openPanels[0].title + '|' + dialogs.openPanels[0].prompt,
            "Choose Database File to Merge|Merge");
}

TEST_F(DatabaseMergeTest, StatementsThatFailPartWayLeaveEveryRowTheArchiveHeld) {
  const QString mergePath = path(QStringLiteral("merge.db"));
  storeGenerated(mergePath, 20);
  storeGenerated(dbPath, 4);
  const QStringList before = messages(dbPath);
  // One attachment is refused; later a message's insert throws the whole transaction away.
  ASSERT_EQ(test::execOn(dbPath,
                         "CREATE TRIGGER refuse BEFORE INSERT ON attachments WHEN "
                         "NEW.filename_fld='file7.bin' BEGIN SELECT RAISE(ABORT,'disk "
                         "full'); END;"
                         "CREATE TRIGGER undo BEFORE INSERT ON email WHEN NEW.subj_fld "
                         "LIKE 'Message 16 %' BEGIN SELECT RAISE(ROLLBACK,'gone'); END;"),
            QString());
  ASSERT_TRUE(merge(mergePath));
  const QStringList shown = takeAlerts();
  EXPECT_EQ(shown.mid(1), (QStringList{"|SQL error: disk full", "|SQL error: gone", done(20, 4)}));
  EXPECT_EQ(integrity(dbPath), "ok");
  const QStringList after = messages(dbPath);
  for (const QString& message : before)
    EXPECT_TRUE(after.contains(message));
  // What came after the rollback was written outside any transaction and stays.
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT count(*) FROM email").value(0), "7");
}

}  // namespace
}  // namespace quillery::maintenance
