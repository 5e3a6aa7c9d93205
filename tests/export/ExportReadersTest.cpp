// Exports of an archive stored from real mail, read back by real readers.
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "ExportFixture.h"
#include "StoredArchive.h"
#include "export/ArchiveExporter.h"
#include "export/MboxExporter.h"
#include "export/NonLossyAscii.h"
#include "export/TabExporter.h"
#include "support/TestEnvironment.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

class ExportReadersTest : public ExportFixture {
 protected:
  void SetUp() override {
    const QString failure = test::StoredArchive::copyTo(dbPath);
    if (!failure.isEmpty())
      GTEST_SKIP() << failure.toStdString();
    ExportFixture::SetUp();
  }
};

// Every message but those with a line in their text that reads as a postmark: those lines are
// written unquoted, so a reader takes them for the start of another message.
const QString kWithoutFromLines = archive::listStatement(
    u" WHERE body_fld NOT LIKE '%' || char(10) || 'From %' AND id NOT IN (SELECT id FROM "
    u"origemail WHERE orig_fld LIKE '%' || char(10) || 'From %') ORDER BY id");

QString sourceOf(const QString& file, int id) {
  return tableOf(file, QStringLiteral("SELECT orig_fld FROM origemail WHERE id=%1").arg(id))
      .value(0)
      .value(0);
}

// The address of a sender that the store run wrote as "Name <address>", else the address.
QString addressOf(const QString& from) {
  const qsizetype open = from.lastIndexOf(QLatin1Char('<'));
  const qsizetype close = from.lastIndexOf(QLatin1Char('>'));
  return open >= 0 && close > open ? from.mid(open + 1, close - open - 1) : from.trimmed();
}

bool isAscii(const QString& text) {
  for (const QChar c : text)
    if (c.unicode() >= 0x80)
      return false;
  return true;
}

QString chomped(QString text) {
  while (text.endsWith(QLatin1Char('\n')))
    text.chop(1);
  return text;
}

QString doubledBackslashes(QString text) {
  return text.replace(QLatin1Char('\\'), QLatin1String("\\\\"));
}

// A message's fields as the store run gives them, and its attachments' names and contents
// (base64 decoded; plain text without white space at its ends, which a part's boundary
// may take or give).
QStringList messageFields(const QString& file, int id) {
  const QList<QStringList> rows = tableOf(
      file, QStringLiteral("SELECT date_fld, from_fld, to_fld, subj_fld, body_fld FROM email "
                           "WHERE id=%1")
                .arg(id));
  QStringList fields = rows.value(0);
  for (const QStringList& a :
       tableOf(file, QStringLiteral("SELECT filename_fld, encode_fld, attach_fld FROM attachments "
                                    "WHERE id=%1")
                         .arg(id)))
    fields.append(a[0] + QLatin1Char(':') +
                  (a[1].toInt()
                       ? QString::fromLatin1(QByteArray::fromBase64(a[2].toLatin1()).toHex())
                       : a[2].trimmed()));
  return fields;
}

TEST_F(ExportReadersTest, TheStoreRunReadsAnExportedMboxBackAsTheSameMessages) {
  // Lines that read as postmarks are written unquoted, so a message with one in its text
  // would come back as two: such messages are left out of this list.
  retrieve(kWithoutFromLines);
  ASSERT_GT(list.listCount, 100);
  const QString mbox = outputPath("all.mbox");
  ASSERT_EQ(MboxExporter(ports, exportPath).writeMbox(mbox), ExportOutcome::Done);
  const QString copy = outputPath("copy.db");
  const test::ProgramResult stored =
      test::runCli({"store", "--archive", copy, "--mbox", mbox}, dir.path());
  ASSERT_EQ(stored.exitCode, 0) << stored.err.toStdString();
  ASSERT_EQ(tableOf(copy, "SELECT count(*) FROM email").value(0).value(0).toInt(), list.listCount);

  int comparedWhole = 0;
  for (int i = 0; i < list.listCount; ++i) {
    const int id = list.emailRows[i].emailID();
    const QString raw = tableOf(dbPath, QStringLiteral("SELECT orig_fld FROM origemail WHERE "
                                                       "id=%1")
                                            .arg(id))
                            .value(0)
                            .value(0);
    QStringList expected = messageFields(dbPath, id);
    const QStringList actual = messageFields(copy, i + 1);
    if (raw.isEmpty()) {
      // A rebuilt message is written as stored, and storing doubles its backslashes again.
      for (QString& field : expected)
        field = doubledBackslashes(field);
    } else if (!isAscii(raw) || raw.contains(QLatin1Char('\\'))) {
      // The source went out in the non-lossy ASCII form: the store keeps that form (with
      // its backslashes doubled), so the message reads differently; its source shows why.
      QString source = raw;
      text::PlistTrailer::stripPlist(source);
      EXPECT_EQ(chomped(tableOf(copy, QStringLiteral("SELECT orig_fld FROM origemail WHERE "
                                                     "id=%1")
                                          .arg(i + 1))
                            .value(0)
                            .value(0)),
                chomped(doubledBackslashes(QString::fromLatin1(NonLossyAscii::encode(source)))))
          << "message " << id;
      continue;
    }
    ++comparedWhole;
    EXPECT_EQ(actual, expected) << "message " << id;
  }
  EXPECT_GT(comparedWhole, list.listCount / 2);
}

TEST_F(ExportReadersTest, PythonsMailboxModuleReadsTheSameSendersAndSubjects) {
  retrieve(kWithoutFromLines);
  const QString mbox = outputPath("python.mbox");
  ASSERT_EQ(MboxExporter(ports, exportPath).writeMbox(mbox), ExportOutcome::Done);
  const test::ProgramResult read = test::runProgram(
      "python3", {QStringLiteral(QUILLERY_SOURCE_DIR "/tests/export/readers/read_mbox.py"), mbox});
  ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
  const QJsonArray messages = QJsonDocument::fromJson(read.out.toUtf8()).array();
  ASSERT_EQ(messages.size(), list.listCount);
  QStringList differing;
  for (int i = 0; i < list.listCount; ++i) {
    const search::Emailrow& row = list.emailRows[i];
    const QString raw = sourceOf(dbPath, row.emailID());
    // A source that went out escaped shows its 8-bit header text escaped too.
    const bool escaped = !raw.isEmpty() && (!isAscii(raw) || raw.contains(QLatin1Char('\\')));
    const auto same = [escaped](const QString& archived, const QString& shown) {
      return shown == archived ||
             (escaped && shown == QString::fromLatin1(NonLossyAscii::encode(archived)));
    };
    const QJsonObject message = messages[i].toObject();
    // Senders are compared by their address, as the two write a name differently.
    const bool hasAddress = row.emailFrom().contains(QLatin1Char('<'));
    if (!same(hasAddress ? addressOf(row.emailFrom()) : row.emailFrom().simplified(),
              message[hasAddress ? "address" : "from"].toString()) ||
        !same(row.emailSubject().simplified(), message["subject"].toString()))
      differing.append(row.emailSubject());
  }
  // Where the two parsers read a header differently: an address with two "@" (the store run
  // keeps what stands before the second), and a Shift_JIS byte pair outside the character
  // set, which the store run maps to a private-use character and Python to U+FFFD.
  EXPECT_EQ(differing, (QStringList{"More richtext questions/comments", "テスト\ue6ec"}));
}

TEST_F(ExportReadersTest, PythonsCsvModuleReadsOneRowPerMessageWithTheHeadersFields) {
  retrieve();
  const QString path = outputPath("all.tab");
  QString exportPath;
  ASSERT_EQ(TabExporter(ports, exportPath).writeTab(path, true), ExportOutcome::Done);
  const test::ProgramResult read = test::runProgram(
      "python3", {QStringLiteral(QUILLERY_SOURCE_DIR "/tests/export/readers/read_tab.py"), path});
  ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
  const QJsonObject table = QJsonDocument::fromJson(read.out.toUtf8()).object();
  EXPECT_EQ(table["header"].toArray().size(), 10);
  const QJsonArray rows = table["rows"].toArray();
  ASSERT_EQ(rows.size(), list.listCount);
  for (int i = 0; i < list.listCount; ++i) {
    const QJsonObject row = rows[i].toObject();
    QString subject = list.rowAt(i).emailSubject();
    TabExporter::cleanField(subject);
    EXPECT_EQ(row["fields"].toInt(), 10) << i;
    EXPECT_EQ(row["id"].toString().toInt(), list.rowAt(i).emailID());
    EXPECT_EQ(row["subject"].toString(), subject);
  }
}

TEST_F(ExportReadersTest, TheSqliteShellAndQuilleryOpenTheExportedArchiveFile) {
  retrieve();
  list.clickColumn("emailSubject");  // the file follows the order of retrieval all the same
  const QString path = outputPath("exported.db");
  QString exportPath;
  ASSERT_EQ(ArchiveExporter(ports, exportPath).writeArchive(path, true), ExportOutcome::Done);
  const test::ProgramResult shell = test::runProgram(
      "sqlite3", {path,
                  "PRAGMA integrity_check; SELECT count(*) FROM email; SELECT max(id) FROM "
                  "email; SELECT count(*) FROM origemail;"});
  ASSERT_EQ(shell.exitCode, 0) << shell.err.toStdString();
  const QString count = QString::number(list.listCount);
  EXPECT_EQ(shell.out, "ok\n" + count + '\n' + count + '\n' + count + '\n');

  // Row by row under the new ids 1, 2, 3, ...: every text escaped as storing escapes it,
  // so its backslashes arrive doubled.
  const QString rows = QStringLiteral(
      "SELECT e.date_fld,e.from_fld,e.to_fld,e.subj_fld,e.body_fld,e.mailto,e.mailbox,"
      "e.numAttach,t.cat_fld,t.key_fld,t.priority_fld,t.notes_fld,ifnull(o.orig_fld,''),"
      "(SELECT group_concat(type_fld||'/'||filename_fld||'/'||encode_fld||'/'||attach_fld,'|') "
      "FROM attachments a WHERE a.id=e.id) FROM email e LEFT JOIN tags t ON t.id=e.id LEFT "
      "JOIN origemail o ON o.id=e.id WHERE e.id=%1");
  for (int i = 0; i < archive.idList.size(); ++i) {
    QStringList expected = tableOf(dbPath, rows.arg(archive.idList[i])).value(0);
    for (qsizetype column = 1; column < expected.size(); ++column)
      if (column != 7 && column != 10)
        expected[column].replace("\\", "\\\\");
    EXPECT_EQ(tableOf(path, rows.arg(i + 1)).value(0), expected) << "message " << i + 1;
  }

  // Quillery opens it as an archive of its own and lists every message.
  archive.openDB(path);
  ASSERT_FALSE(archive.openFailed);
  retrieve();
  EXPECT_EQ(list.listCount, archive.idList.size());
  EXPECT_TRUE(dialogs.alerts.isEmpty());
}

}  // namespace
}  // namespace quillery::exporting
