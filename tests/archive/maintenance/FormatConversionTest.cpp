// Converting archive files of the old format, built with SQL, and what the converted file
// then does: open, list and search like one of the current format.
#include <QSignalSpy>

#include "MaintenanceFixture.h"
#include "archive/Statements.h"
#include "archive/maintenance/FormatConversion.h"

namespace quillery::maintenance {
namespace {

// Four messages (ids 1, 2, 3, 5) with quotes, backslashes and non-ASCII text, and attachment
// names that are counted (a.pdf, e.txt, photo.jpg) or not (html and etf in any case).
const char* const kOldRows =
    "INSERT INTO email VALUES(1,'Ann \"Q\" <a@x.org>','b@x.org','C:\\\\temp Grüße',"
    "'2003-04-05 06:07:08','INBOX','a@x.org','line one\nline \"two\"');"
    "INSERT INTO email VALUES(2,'c@x.org','b@x.org','web page','2003-04-06 00:00:00','INBOX',"
    "'c@x.org','html only');"
    "INSERT INTO email VALUES(3,'d@x.org','b@x.org','tagged','2003-04-07 00:00:00','Sent',"
    "'d@x.org','no attachments');"
    "INSERT INTO email VALUES(5,'e@x.org','b@x.org','日本','2003-04-08 00:00:00','INBOX',"
    "'e@x.org','after a gap');"
    "INSERT INTO attachments VALUES(1,'application/pdf','a.pdf',1,'JVBERi0=');"
    "INSERT INTO attachments VALUES(1,'text/html','b.html',0,'<p>');"
    "INSERT INTO attachments VALUES(1,'text/enriched','c.etf',0,'x');"
    "INSERT INTO attachments VALUES(1,'text/html','D.HTML',0,'<p>');"
    "INSERT INTO attachments VALUES(1,'text/plain','e.txt',0,'text');"
    "INSERT INTO attachments VALUES(2,'text/html','index.html',0,'<p>');"
    "INSERT INTO attachments VALUES(2,'text/enriched','x.etf',0,'x');"
    "INSERT INTO attachments VALUES(5,'text/enriched','Report.ETF',0,'x');"
    "INSERT INTO attachments VALUES(5,'image/jpeg','photo.jpg',1,'/9j/');"
    "INSERT INTO origemail VALUES(3,'Subject: tagged');"
    "INSERT INTO tags VALUES(3,'Work','',2,'');";

const char* const kOldColumns =
    "SELECT id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld FROM email";

class FormatConversionTest : public MaintenanceFixture {
 protected:
  bool convert(const QString& file) {
    FormatConversion conversion(archive, list, dialogs, progress,
                                [this](const QString& line) { errorLines.append(line); });
    QSignalSpy closed(&conversion, &FormatConversion::storePanelClosed);
    QSignalSpy cleared(&conversion, &FormatConversion::messageViewCleared);
    const bool done = conversion.convertDBFormat(file);
    panelClosed = closed.size() + cleared.size();
    return done;
  }
  QString question(const QString& file) const {
    return "|the database file " + file +
           " will be converted in place to the new format.  It's a good idea to make a backup "
           "copy of the database file before converting to the new format.";
  }
  QStringList errorLines;
  int panelClosed = 0;
};

TEST_F(FormatConversionTest, AnOldArchiveKeepsEveryRowAndCountsItsAttachmentsThenWorksAsANewOne) {
  makeOldFormat(dbPath, kOldRows);
  const QStringList before = test::rowsOf(dbPath, kOldColumns);
  list.listCount = 9;  // whatever the list showed before
  ASSERT_TRUE(convert(dbPath));
  EXPECT_EQ(dialogs.alerts.value(0).buttons, (QStringList{"Convert", "Cancel"}));
  EXPECT_EQ(takeAlerts(),
            (QStringList{question(dbPath), "|The pre-7.4.1 format database file " + dbPath +
                                               " has been converted to the new format."}));
  EXPECT_EQ(progress.events.filter("open:"),
            (QStringList{"open:Converting...", "open:Calculating number of attachments..."}));
  EXPECT_EQ(panelClosed, 2);
  EXPECT_EQ(list.listCount + archive.idCount + archive.idList.size(), 0);
  EXPECT_TRUE(archive.isOpen());
  EXPECT_EQ(test::rowsOf(dbPath, kOldColumns), before);
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT id, numAttach FROM email"),
            (QStringList{"1|2", "2|0", "3|0", "5|1"}));
  EXPECT_EQ(integrity(dbPath), "ok");
  EXPECT_TRUE(errorLines.isEmpty());

  archive.openDB(dbPath);
  EXPECT_EQ(takeAlerts(), QStringList());
  archive.sqlText = archive::listAllStatement();
  list.retrieve(dbPath);
  ASSERT_EQ(list.emailRows.size(), 4);
  EXPECT_EQ(list.emailRows[2].emailDate(), "2003-04-07 00:00:00*");
  archive.sqlText = archive::listStatement(u" WHERE subj_fld LIKE \"%Grüße%\"");
  list.retrieve(dbPath);
  ASSERT_EQ(list.emailRows.size(), 1);
  EXPECT_EQ(list.emailRows[0].emailFrom(), "Ann \"Q\" <a@x.org>");

  // A current file is left alone, and its connection closed.
  EXPECT_FALSE(convert(dbPath));
  EXPECT_EQ(takeAlerts(), QStringList{"|the database file " + dbPath +
                                      " is already in the new format.  It doesn't need to be "
                                      "converted."});
  EXPECT_FALSE(archive.isOpen());
}

TEST_F(FormatConversionTest, WhatCannotBeConvertedIsLeftAsItWasWithItsAlert) {
  const QString other = path(QStringLiteral("other.db"));
  ASSERT_EQ(test::execOn(other,
                         "CREATE TABLE email (id INTEGER PRIMARY KEY,from_fld,body_fld);"
                         "INSERT INTO email VALUES(4,'f','kept');"),
            QString());
  const QString missing = path(QStringLiteral("no/folder.db"));
  makeOldFormat(dbPath, kOldRows);
  const struct {
    const char* name;
    QString file;
    int answer;
    QString alert;
    bool openFailed, open;
  } rows[] = {
      {"the user cancels", dbPath, 1, "", false, true},
      {"rows of another layout", other, 0, "|SQL Error: " + other + " 3 values for 8 columns", true,
       false},
      {"a file that cannot be opened", missing, 0,
       "|SQL Error: " + missing + " unable to open database file", false, false},
  };
  for (const auto& row : rows) {
    const QStringList before = test::rowsOf(row.file, "SELECT * FROM email");
    archive.openFailed = false;
    dialogs.setNextAnswer(row.answer);
    EXPECT_FALSE(convert(row.file)) << row.name;
    QStringList shown = takeAlerts();
    shown.removeAll(question(row.file));
    EXPECT_EQ(shown.join(""), row.alert) << row.name;
    EXPECT_EQ(archive.openFailed, row.openFailed) << row.name;
    EXPECT_EQ(archive.isOpen(), row.open) << row.name;
    EXPECT_EQ(test::rowsOf(row.file, "SELECT * FROM email"), before) << row.name;
  }
  EXPECT_EQ(panelClosed, 0);  // the last one asked nothing and showed nothing
}

TEST_F(FormatConversionTest, FaultsInTheRecountLeaveACurrentFileWithEveryRow) {
  // A count that cannot be stored is logged and the others are stored.
  makeOldFormat(dbPath, kOldRows);
  progress.onEvent = [&](const QString& event) {
    if (event == "open:Calculating number of attachments...")
      archive.exec(
          "CREATE TEMP TRIGGER refuse BEFORE UPDATE ON main.email WHEN NEW.id=1 BEGIN "
          "SELECT RAISE(ABORT,'refused'); END");
  };
  ASSERT_TRUE(convert(dbPath));
  EXPECT_EQ(errorLines, QStringList{"SQL error updating number of attachments\n"});
  EXPECT_EQ(test::rowsOf(dbPath, "SELECT numAttach FROM email"), (QStringList{"0", "0", "0", "1"}));

  // A count that cannot be read ends the conversion at once, inside its open transaction.
  const QString noAttachments = path(QStringLiteral("no-attachments.db"));
  makeOldFormat(noAttachments,
                "INSERT INTO email VALUES(1,'f','t','s','d','m','r','b');"
                "DROP TABLE attachments;");
  takeAlerts();
  EXPECT_FALSE(convert(noAttachments));
  EXPECT_EQ(takeAlerts().mid(1), QStringList{"|SQL error: no such table: attachments"});
  EXPECT_TRUE(progress.isOpen);
  archive.close();
  EXPECT_EQ(test::rowsOf(noAttachments, "SELECT id,numAttach,body_fld FROM email"),
            QStringList{"1|0|b"});

  // An empty archive converts without a count.
  const QString empty = path(QStringLiteral("empty.db"));
  makeOldFormat(empty, QString());
  EXPECT_TRUE(convert(empty));
  EXPECT_EQ(takeAlerts().size(), 2);
  EXPECT_EQ(test::rowsOf(empty, "SELECT count(numAttach) FROM email"), QStringList{"0"});
}

}  // namespace
}  // namespace quillery::maintenance
