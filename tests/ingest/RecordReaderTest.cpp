// The record reader on hand-written records: every rule of the record grammar, including
// the ones that look odd but that the parser tool and earlier archives rely on.
#include "StoreFixture.h"

namespace quillery::ingest {
namespace {

class RecordReaderTest : public StoreFixture {};

TEST_F(RecordReaderTest, OneMessageIsStoredFieldByFieldAndCounted) {
  reader.storeInDB(QStringLiteral(
      "MAILBOX: Work/Inbox \nFROM:  Ann <ann@example.com>\t\nTO: bob@example.com \n"
      "SUBJECT: Hello  \nDATE: 2020-03-04 05:06:07 \nMAILTO: ann@example.com \nX-OTHER: no\n"
      "BODY:First line\nsecond ENDOFBODY: line\n\nlast words ENDOFBODY:\nENDOFEMAIL:\n"));
  EXPECT_EQ(
      value("SELECT date_fld, from_fld, to_fld, subj_fld, mailto, mailbox, numAttach FROM email"),
      "2020-03-04 05:06:07|Ann <ann@example.com>|bob@example.com|Hello|ann@example.com|"
      "Work/Inbox |0");
  // The body is trimmed, ends only at a line that ends with the marker, and text in front
  // of that marker goes with it.
  EXPECT_EQ(value("SELECT body_fld FROM email"), "First line\nsecond ENDOFBODY: line");
  const int id = number("SELECT id FROM email");
  EXPECT_EQ((QList<int>{message.lastStoredId, counters.lowestStoredId, counters.highestStoredId,
                        counters.processedCount, counters.storedCount, messagesCounted}),
            (QList<int>{id, id, id, 1, 1, 1}));
}

TEST_F(RecordReaderTest, TheLineAfterTheBodyIsLookedAtOnlyForTheEnd) {
  reader.storeInDB(
      QStringLiteral("FROM:Ann\nSUBJECT:One\nDATE:2020-01-01 00:00:00\nBODY:one\nENDOFBODY:\n"
                     "FROM:not counted\nSUBJECT:Two\nBODY:two\nENDOFBODY:\nENDOFEMAIL:\n"
                     "SUBJECT:Three\nBODY:three\nENDOFBODY:\n"));
  EXPECT_EQ(value("SELECT group_concat(subj_fld||'/'||from_fld||'/'||body_fld, ' ') FROM "
                  "(SELECT * FROM email ORDER BY id)"),
            "One/Ann/one Two/Ann/two");
  EXPECT_EQ(counters.processedCount, 1);
}

TEST_F(RecordReaderTest, AttachmentsAreStoredAfterTheirMessageAndCountedByName) {
  sql("CREATE TABLE inserted(n)");
  sql("CREATE TRIGGER remember AFTER INSERT ON email BEGIN INSERT INTO inserted "
      "VALUES(NEW.numAttach); END");
  reader.storeInDB(
      record("Files",
             "BODY:see attached\nENDOFBODY:\nATTACH:\nTYPE:application/pdf\nFILENAME:report.pdf\n"
             "ENCODING:BASE64\nBLOB:dropped\nJVBERi0x\nENDATTACH: no\nENDATTACH:\n"
             "ATTACH:\nTYPE:text/html\nFILENAME:winmail.dat.html\nENCODING:quoted-printable\n"
             "BLOB:\n<p>hi</p>\nlost ENDATTACH:\nENCODING:base64\n"
             "TYPE:text/html\nFILENAME:page.html\nBLOB:\n<b>x</b>\nENDATTACH:\n"
             "ATTACH:\nTYPE:text/enriched\nFILENAME:rich.etf\nBLOB:\nbold\nENDATTACH:\n"
             "ENDATTACHMENTS:\n"));
  EXPECT_EQ(value("SELECT group_concat(n) FROM inserted"), "1");  // row before attachments
  // The html and etf parts do not count.
  EXPECT_EQ(value("SELECT numAttach, body_fld FROM email"), "2|see attached\n\nATTACHMENTS:");
  EXPECT_EQ(rows("SELECT type_fld, filename_fld, encode_fld, attach_fld FROM attachments WHERE "
                 "id=(SELECT id FROM email) ORDER BY rowid"),
            (QStringList{"application/pdf|report.pdf|1|JVBERi0x\nENDATTACH: no\n",
                         "text/html|winmail.dat|0|<p>hi</p>\n", "text/html|page.html|0|<b>x</b>\n",
                         "text/enriched|rich.etf|0|bold\n"}));
}

TEST_F(RecordReaderTest, FieldsARecordLacksAreCarriedAndARecordMayEndWithoutItsClosingLines) {
  reader.storeInDB(
      record("First",
             "TO:x\\y\nTAGCAT:Work\nBODY:a\nENDOFBODY:\nATTACH:\nTYPE:image/png\nFILENAME:a.png\n"
             "BLOB:\nAAAA\nENDATTACH:\nENDATTACHMENTS:\n"));
  reader.storeInDB(QStringLiteral(
      "MAILBOX:Other\nFROM:Bob\nSUBJECT:Second\nBODY:b\nENDOFBODY:\nATTACH:\nFILENAME:b.png\n"
      "BLOB:\nBBBB\nENDATTACH:\nENDATTACHMENTS:\nENDOFEMAIL:\n"));
  // "MAILBOX:" without its blank is no mailbox line. A carried field is stored as it was the
  // first time, escaped once.
  EXPECT_EQ(rows("SELECT subj_fld, date_fld, mailbox, to_fld FROM email ORDER BY id"),
            (QStringList{"First|2020-03-04 05:06:07|Box|x\\\\y",
                         "Second|2020-03-04 05:06:07|Box|x\\\\y"}));
  EXPECT_EQ(value("SELECT type_fld FROM attachments WHERE filename_fld='b.png'"), "image/png");
  // Only the tags are cleared per record.
  EXPECT_EQ(value("SELECT group_concat(cat_fld) FROM tags"), "Work");

  // A record without its closing lines ends at the end of its text.
  reader.storeInDB(record("Body cut", "BODY:first\nsecond").chopped(12));
  EXPECT_EQ(value("SELECT body_fld FROM email WHERE subj_fld='Body cut'"), "first\nsecond");
  reader.storeInDB(
      record("Blob cut", "BODY:b\nENDOFBODY:\nATTACH:\nFILENAME:f.txt\nBLOB:\nline1\nline2")
          .chopped(12));
  const int id = message.lastStoredId;
  EXPECT_EQ(value(QStringLiteral("SELECT numAttach, attach_fld FROM email JOIN attachments "
                                 "USING(id) WHERE id=%1")
                      .arg(id)),
            "1|line1\nline2\n");

  // A record with no body is counted as processed but stores nothing; the id range
  // takes the last stored id once more.
  const int lowest = counters.lowestStoredId;
  reader.storeInDB(QStringLiteral("FROM:Carl\nSUBJECT:no body\n"));
  EXPECT_EQ(number("SELECT count(*) FROM email"), 4);
  EXPECT_EQ(
      QList<int>({counters.processedCount, counters.lowestStoredId, counters.highestStoredId}),
      QList<int>({5, lowest, id}));
}

TEST_F(RecordReaderTest, TheMessageFileIsReadAsUtf8ElseLineByLineAsWindows1252) {
  EXPECT_EQ(reader.doOneEmail(paths.messageFile), 0);  // not there
  writeFile(paths.messageFile, {});
  EXPECT_EQ(reader.doOneEmail(paths.messageFile), 1);
  EXPECT_EQ(counters.processedCount, 0);

  const QByteArray longLine(70000, 'x');
  writeFile(paths.messageFile,
            "FROM:Ann\nSUBJECT:Caf\xe9 \x80 5\nDATE:2021-01-01 00:00:00\n"
            "BODY:Gr\xc3\xbc\xc3\x9f"
            "e\n" +
                longLine + "\nENDOFBODY:\nENDOFEMAIL:\n");
  EXPECT_EQ(reader.doOneEmail(paths.messageFile), 1);
  EXPECT_EQ(value("SELECT subj_fld, body_fld FROM email"), "Café € 5|Grüße\n" + longLine);
}

TEST_F(RecordReaderTest, OnceBothFilesAreReadTheToolMayRewriteThem) {
  store.setOrigState(true);
  writeFile(paths.messageFile, record("Read first", "BODY:first body\nENDOFBODY:\n").toUtf8());
  writeFile(paths.rawFile, "RAW:\nfirst source\nENDOFRAW:\n");
  int calls = 0;
  EXPECT_EQ(reader.doOneEmail(paths.messageFile,
                              [&] {
                                ++calls;
                                EXPECT_EQ(number("SELECT count(*) FROM email"), 0);
                                writeFile(paths.messageFile, "next record");
                                QFile::remove(paths.rawFile);
                              }),
            1);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(value("SELECT subj_fld, body_fld, orig_fld FROM email JOIN origemail "
                  "USING(id)"),
            "Read first|first body|first source\n");
  EXPECT_TRUE(dialogs.alerts.isEmpty());
  EXPECT_EQ(reader.doOneEmail(dir.filePath("missing"), [&] { ++calls; }), 0);
  EXPECT_EQ(calls, 1);
}

}  // namespace
}  // namespace quillery::ingest
