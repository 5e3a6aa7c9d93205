// Storing one message: duplicates, escaping, the second attempt, the tags and raw source
// rows, and the failures that the store log and the alerts report. Failures are made real
// with triggers on the test archive and with a damaged archive file.
#include "StoreFixture.h"

namespace quillery::ingest {
namespace {

using platform::AlertStyle;

class EmailStoreTest : public StoreFixture {
 protected:
  void failInsertsWhen(const QString& table, const QString& condition) {
    sql(QStringLiteral("CREATE TRIGGER fail_%1_%2 BEFORE INSERT ON %1 WHEN %3 BEGIN SELECT "
                       "RAISE(ABORT, 'refused'); END")
            .arg(table, QString::number(++triggers_), condition));
  }
  int triggers_ = 0;
  void writeRaw(const QByteArray& source) {
    writeFile(paths.rawFile, "RAW:\n" + source + "ENDOFRAW:\nafter the end\n");
  }
  const QString withBlob = QStringLiteral(
      "BODY:body\nENDOFBODY:\nATTACH:\nFILENAME:a.txt\nBLOB:\nnew\nENDATTACH:\nENDATTACHMENTS:\n");
};

TEST_F(EmailStoreTest, ASecondCopyIsFoundByDateAndReplacesTheFirstKeepingItsTags) {
  const QString subject = QStringLiteral("Say \"cheese\" \\o/");
  store.setOrigState(true);
  writeRaw("first source\n");
  reader.storeInDB(record(subject, withBlob));
  const int first = message.lastStoredId;
  reader.storeInDB(record("Another", "BODY:b\nENDOFBODY:\n"));
  sql(QStringLiteral("INSERT INTO tags VALUES(%1,'Work','alpha',2,'keep me')").arg(first));
  sql(QStringLiteral("INSERT INTO attachments VALUES(%1,'t','old.txt',0,'old')").arg(first));

  writeRaw("second source\n");
  reader.storeInDB(record(subject, "TAGCAT:Record\nTAGNOTES:mine\n" + withBlob));
  const int second = message.lastStoredId;
  EXPECT_GT(second, first);
  // Backslashes are stored doubled and double quotes single, and the copy is still found.
  EXPECT_EQ(value("SELECT group_concat(subj_fld) FROM email WHERE subj_fld LIKE 'Say%'"),
            "Say \"cheese\" \\\\o/");
  const QString id = QString::number(second) + '|';
  EXPECT_EQ(rows("SELECT id, cat_fld, key_fld, priority_fld, notes_fld FROM tags"),
            QStringList{id + "Work|alpha|2|keep me"});
  EXPECT_EQ(rows("SELECT id, filename_fld FROM attachments"), QStringList{id + "a.txt"});
  EXPECT_EQ(rows(QStringLiteral("SELECT id, orig_fld FROM origemail WHERE id IN (%1,%2)")
                     .arg(first)
                     .arg(second)),
            QStringList{id + "second source\n"});
  EXPECT_EQ(QList<int>({counters.duplicateCount, counters.storedCount}), QList<int>({1, 3}));

  // Without tags on the earlier copy the record's own tags stay.
  reader.storeInDB(record(subject, "TAGCAT:Record\nTAGPRIORITY:4\nBODY:b\nENDOFBODY:\n"));
  sql("DELETE FROM tags");
  reader.storeInDB(record(subject, "TAGCAT:Record\nTAGPRIORITY:4\nBODY:b\nENDOFBODY:\n"));
  EXPECT_EQ(value("SELECT cat_fld, priority_fld, notes_fld FROM tags"), "Record|4|");
  EXPECT_EQ(counters.duplicateCount, 3);
  // The duplicate test finds rows through the date index.
  const QStringList plan = test::rowsOf(
      paths.dbPath, "EXPLAIN QUERY PLAN " + EmailStore::duplicateStatement(
                                                "2020-01-01 00:00:00", "to", "from", "subject"));
  EXPECT_TRUE(plan.join(' ').contains("USING INDEX email_date_idx"))
      << plan.join(' ').toStdString();
}

TEST_F(EmailStoreTest, AFailingInsertIsLoggedOnceAndRetriedWithAnEmptySubject) {
  failInsertsWhen("email", "NEW.subj_fld LIKE '%poison%'");
  reader.storeInDB(record("poison \"pill\"", "BODY:kept\nENDOFBODY:\n"));
  EXPECT_EQ(value("SELECT subj_fld, body_fld FROM email"), "|kept");
  // The reason takes the line under the message line, which the mailbox's line end opens.
  EXPECT_EQ(storeLogText(), QStringLiteral("SQL error for this email: 19  2020-03-04 05:06:07::"
                                           "Ann <ann@example.com>::bob@example.com::"
                                           "poison \"\"pill\"\"::Box\nSQLite: refused\n"));
  EXPECT_EQ(QList<int>({counters.sqlErrorCount, counters.storedCount, message.messageStored}),
            QList<int>({1, 1, true}));

  // An empty body has no second attempt, and a second failure gives up: both silently.
  failInsertsWhen("email", "NEW.from_fld = 'Dora'");
  reader.storeInDB(record("poison again", "BODY: \nENDOFBODY:\n"));
  reader.storeInDB(record("poison", "FROM:Dora\nBODY:text\nENDOFBODY:\n"));
  EXPECT_EQ(QList<qsizetype>({number("SELECT count(*) FROM email"), counters.sqlErrorCount,
                              storeLogText().count("SQL error"), message.messageStored,
                              dialogs.alerts.size()}),
            QList<qsizetype>({1, 2, 2, false, 0}));
}

TEST_F(EmailStoreTest, TheRawSourceIsReadOnlyWhenItIsKeptAndNotAfterAFailingTagsRow) {
  // Off: the file is never opened, so its absence goes unnoticed.
  reader.storeInDB(record("Off", "BODY:b\nENDOFBODY:\n"));
  EXPECT_TRUE(message.messageStored);
  EXPECT_EQ(number("SELECT count(*) FROM origemail"), 0);

  store.setOrigState(true);
  reader.storeInDB(record("Missing", "BODY:b\nENDOFBODY:\n"));
  EXPECT_EQ(dialogs.messages(), QStringList{"Couldn't open " + paths.rawFile});
  EXPECT_EQ(progress.events, (QStringList{"close", "controls:count+item:0"}));
  EXPECT_FALSE(message.messageStored);

  // "RAW:" lines are skipped wherever they are; a line that is not UTF-8 is Windows-1252.
  // Each line piece decodes on its own: a character cut at 29,999 bytes is two 8-bit ones.
  const QByteArray longLine(29998, 'a');
  writeRaw("Subject: x\nRAW:\nC:\\dir \"q\"\nCaf\xe9\nRAW:\n" + longLine + "\xc3\xa9\nok\n");
  reader.storeInDB(record("On", "BODY:b\nENDOFBODY:\n"));
  EXPECT_EQ(
      value(QStringLiteral("SELECT orig_fld FROM origemail WHERE id=%1").arg(message.lastStoredId)),
      QStringLiteral("Subject: x\nC:\\\\dir \"q\"\nCafé\n") + QString::fromLatin1(longLine) +
          QStringLiteral("Ã©\nok\n"));

  // A tag note with a double quote fails its insert, which stops before the raw source.
  dialogs.alerts.clear();
  reader.storeInDB(record("Tagged", "TAGNOTES:say \"hi\"\nBODY:b\nENDOFBODY:\n"));
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts[0].title + '|' + dialogs.alerts[0].message.left(11), "|SQL error: ");
  EXPECT_EQ(rows("SELECT subj_fld, (SELECT count(*) FROM tags), (SELECT count(*) FROM origemail "
                 "WHERE id=email.id) FROM email WHERE subj_fld='Tagged'"),
            QStringList{"Tagged|0|0"});
  EXPECT_FALSE(message.messageStored);
}

TEST_F(EmailStoreTest, FailuresAfterTheEmailRowAreLoggedAndTheRowStays) {
  store.setOrigState(true);
  writeRaw("source\n");
  failInsertsWhen("attachments", "NEW.filename_fld = 'bad\"name'");
  failInsertsWhen("origemail", "1");
  sql("CREATE TRIGGER fail_update BEFORE UPDATE ON email BEGIN SELECT RAISE(ABORT, 'no'); END");
  reader.storeInDB(record("Logged \"twice\"",
                          "BODY:b\nENDOFBODY:\nATTACH:\nFILENAME:bad\"name\nBLOB:\nx\nENDATTACH:\n"
                          "ENDATTACHMENTS:\n"));
  const QString suffix = QStringLiteral(
      "19  2020-03-04 05:06:07::Ann <ann@example.com>::bob@example.com::Logged \"\"twice\"\"::"
      "Box\nSQLite: refused\n");
  // The raw source fails, so the message counts as not stored and is stored once more at
  // the end of its attachments, replacing the first row: escaped once again, not twice.
  EXPECT_EQ(storeLogText(), "SQL error for raw source of this email: " + suffix +
                                "SQL error for attachment bad\"\"name in this email: " + suffix +
                                "SQL error for raw source of this email: " + suffix);
  EXPECT_EQ(QList<int>({counters.sqlErrorCount, counters.duplicateCount,
                        number("SELECT count(*) FROM email")}),
            QList<int>({3, 1, 1}));

  sql("DROP TRIGGER fail_origemail_2");
  reader.storeInDB(record("Updated",
                          "BODY:b\nENDOFBODY:\nATTACH:\nFILENAME:ok\nBLOB:\nx\n"
                          "ENDATTACH:\nENDATTACHMENTS:\n"));
  EXPECT_TRUE(storeLogText().endsWith("SQL error updating number of attachments\nSQLite: no\n"))
      << storeLogText().toStdString();
  EXPECT_EQ(counters.sqlErrorCount, 4);
}

TEST_F(EmailStoreTest, NulCharactersAreStoredAsReplacementCharactersAndNothingElseChanges) {
  // Binary junk in a part without encoding reaches the record files as it is; a NUL would
  // end the statement's text where it stands.
  const QChar nul(0);
  store.setOrigState(true);
  writeRaw(QByteArray("Subject: junk\n\nbin\0ary\n", 23));
  const QString junk =
      record(QStringLiteral("Ju") + nul + QStringLiteral("nk"),
             QStringLiteral("BODY:a") + nul +
                 QStringLiteral("b\nENDOFBODY:\nATTACH:\nFILENAME:j.txt\nBLOB:\nx") + nul +
                 QStringLiteral("y\nENDATTACH:\nENDATTACHMENTS:\n"));
  reader.storeInDB(junk);
  // Stored again, it is found as the same message.
  reader.storeInDB(junk);
  EXPECT_EQ(rows("SELECT subj_fld, body_fld, attach_fld, orig_fld FROM email JOIN attachments "
                 "USING(id) JOIN origemail USING(id)"),
            QStringList{QStringLiteral("Ju\uFFFDnk|a\uFFFDb\n\nATTACHMENTS:|x\uFFFDy\n|Subject: "
                                       "junk\n\nbin\uFFFDary\n")});
  EXPECT_EQ(QList<int>({counters.storedCount, counters.duplicateCount, message.messageStored}),
            QList<int>({2, 1, true}));
  EXPECT_EQ(storeLogText(), QString());
}

TEST_F(EmailStoreTest, ADamagedArchiveStopsTheRunWithAnAlert) {
  // Enough rows for the email table to span several pages; then its last leaf page, where
  // the next row would go, is overwritten.
  for (int i = 0; i < 40; ++i)
    reader.storeInDB(
        record(QStringLiteral("Row %1").arg(i), "BODY:" + QString(1000, 'b') + "\nENDOFBODY:\n"));
  const int page = number(
      "SELECT pageno FROM dbstat WHERE name='email' AND pagetype='leaf' ORDER BY path DESC LIMIT "
      "1");
  ASSERT_GT(page, 1);
  archive.close();
  QFile file(paths.dbPath);
  ASSERT_TRUE(file.open(QIODevice::ReadWrite));
  file.seek((page - 1) * 4096LL);
  file.write(QByteArray(4096, '\xff'));
  file.close();
  archive.openDB(paths.dbPath);
  ASSERT_FALSE(archive.openFailed) << dialogs.messages().join("|").toStdString();

  reader.storeInDB(record("One more", "BODY:b\nENDOFBODY:\n"));
  ASSERT_EQ(dialogs.alerts.size(), 1);
  EXPECT_EQ(dialogs.alerts[0].title, "Store Failed");
  EXPECT_EQ(dialogs.alerts[0].message, paths.dbPath + " is not a valid database file.");
  EXPECT_TRUE(archive.openFailed);
  EXPECT_EQ(counters.storedCount, 40);
}

}  // namespace
}  // namespace quillery::ingest
