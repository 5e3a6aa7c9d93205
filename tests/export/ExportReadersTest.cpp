// Exports of an archive stored from real mail, read back by real readers: the store run
// itself and Python's mailbox module (mbox), Python's csv module (tab-delimited text), the
// sqlite3 shell and Quillery (archive file).
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include "ExportFixture.h"
#include "StoredArchive.h"
#include "export/NonLossyAscii.h"
#include "export/TabExporter.h"
#include "support/TestEnvironment.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

using F = ExportFormat;

class ExportReadersTest : public ExportFixture {
 protected:
  void SetUp() override {
    const QString failure = test::StoredArchive::copyTo(dbPath);
    if (!failure.isEmpty())
      GTEST_SKIP() << failure.toStdString();
    ExportFixture::SetUp();
  }
  // Runs a reader under tests/export/readers on a file; its JSON answer.
  QJsonDocument python(const QString& script, const QString& file) {
    const test::ProgramResult read = test::runProgram(
        "python3", {QStringLiteral(QUILLERY_SOURCE_DIR "/tests/export/readers/") + script, file});
    EXPECT_EQ(read.exitCode, 0) << read.err.toStdString();
    return QJsonDocument::fromJson(read.out.toUtf8());
  }
};

QString scalar(const QString& file, const QString& sql) {
  return tableOf(file, sql).value(0).value(0);
}

QString doubledBackslashes(QString text) {
  return text.replace('\\', "\\\\");
}

// The raw source of a message in the form the mbox file carries it.
QString exportedSource(QString source) {
  text::PlistTrailer::stripPlist(source);
  return QString::fromLatin1(NonLossyAscii::encode(source));
}

// A message's fields as the store run gives them, and its attachments' names and contents
// (base64 decoded; plain text without white space at its ends, which a boundary may move).
QStringList messageFields(const QString& file, int id) {
  QStringList fields = tableOf(file, QStringLiteral("SELECT date_fld,from_fld,to_fld,subj_fld,"
                                                    "body_fld FROM email WHERE id=%1")
                                         .arg(id))
                           .value(0);
  for (const QStringList& a : tableOf(file, QStringLiteral("SELECT filename_fld,encode_fld,"
                                                           "attach_fld FROM attachments WHERE "
                                                           "id=%1")
                                                .arg(id)))
    fields.append(
        a[0] + ':' +
        (a[1].toInt() ? QByteArray::fromBase64(a[2].toLatin1()).toHex() : a[2].trimmed()));
  return fields;
}

TEST_F(ExportReadersTest, TheStoreRunAndPythonsMailboxModuleReadTheExportedMessagesBack) {
  // Lines that read as postmarks are written unquoted, so a reader takes them for the start
  // of another message: messages with such a line are left out of this list.
  retrieve(archive::listStatement(
      u" WHERE body_fld NOT LIKE '%' || char(10) || 'From %' AND id NOT IN (SELECT id FROM "
      u"origemail WHERE orig_fld LIKE '%' || char(10) || 'From %') ORDER BY id"));
  ASSERT_GT(list.listCount, 100);
  ASSERT_EQ(run(F::Mbox, "all.mbox"), ExportOutcome::Done);
  const QString copy = outputPath("copy.db");
  const test::ProgramResult stored =
      test::runCli({"store", "--archive", copy, "--mbox", outputPath("all.mbox")}, dir.path());
  ASSERT_EQ(stored.exitCode, 0) << stored.err.toStdString();
  ASSERT_EQ(scalar(copy, "SELECT count(*) FROM email").toInt(), list.listCount);
  const QJsonArray python = this->python("read_mbox.py", outputPath("all.mbox")).array();
  ASSERT_EQ(python.size(), list.listCount);

  int whole = 0;
  QStringList differing;
  for (int i = 0; i < list.listCount; ++i) {
    const search::Emailrow& row = list.rowAt(i);
    const QString raw =
        scalar(dbPath, "SELECT orig_fld FROM origemail WHERE id=" + QString::number(row.emailID()));
    QStringList expected = messageFields(dbPath, row.emailID());
    // A source with characters beyond ASCII, or with backslashes, went out escaped: the
    // store keeps the escaped form (its backslashes doubled), so such a message reads
    // differently, and its source shows why. Other sources come back as they were; a
    // rebuilt message is written as stored, and storing doubles its backslashes again.
    const bool escaped = !raw.isEmpty() && exportedSource(raw) != raw;
    if (escaped) {
      const QString kept =
          scalar(copy, "SELECT orig_fld FROM origemail WHERE id=" + QString::number(i + 1));
      EXPECT_EQ(kept.trimmed(), doubledBackslashes(exportedSource(raw)).trimmed());
    } else {
      for (QString& field : expected)
        field = raw.isEmpty() ? doubledBackslashes(field) : field;
      EXPECT_EQ(messageFields(copy, i + 1), expected) << "message " << row.emailID();
      ++whole;
    }
    // Python reads the sender's address and the subject; escaped 8-bit header text it shows
    // escaped.
    const auto same = [escaped](const QString& archived, const QString& shown) {
      return shown == archived ||
             (escaped && shown == QString::fromLatin1(NonLossyAscii::encode(archived)));
    };
    const QString from = row.emailFrom();
    const qsizetype open = from.lastIndexOf('<');
    const QJsonObject read = python[i].toObject();
    if (!same(open < 0 ? from.simplified() : from.mid(open + 1).chopped(1),
              read[open < 0 ? "from" : "address"].toString()) ||
        !same(row.emailSubject().simplified(), read["subject"].toString()))
      differing.append(row.emailSubject());
  }
  EXPECT_GT(whole, list.listCount / 2);
  // Where the two parsers read a header differently: an address with two "@" (the store run
  // keeps what stands before the second), and a Shift_JIS byte pair outside the character
  // set, which the store run maps to a private-use character and Python to U+FFFD.
  EXPECT_EQ(differing, (QStringList{"More richtext questions/comments", "テスト\ue6ec"}));
}

TEST_F(ExportReadersTest, PythonsCsvModuleReadsOneRowPerMessageWithTheHeadersFields) {
  retrieve();
  ASSERT_EQ(run(F::Tab, "all.tab"), ExportOutcome::Done);
  const QJsonObject table = python("read_tab.py", outputPath("all.tab")).object();
  EXPECT_EQ(table["header"].toArray().size(), 10);
  const QJsonArray rows = table["rows"].toArray();
  ASSERT_EQ(rows.size(), list.listCount);
  for (int i = 0; i < list.listCount; ++i) {
    QString subject = list.rowAt(i).emailSubject();
    TabExporter::cleanField(subject);
    EXPECT_EQ(rows[i].toObject().toVariantMap(),
              (QVariantMap{{"fields", 10},
                           {"id", QString::number(list.rowAt(i).emailID())},
                           {"subject", subject}}));
  }
}

TEST_F(ExportReadersTest, TheSqliteShellAndQuilleryOpenTheExportedArchiveFile) {
  retrieve();
  list.clickColumn("emailSubject");  // the file follows the order of retrieval all the same
  ASSERT_EQ(run(F::Archive, "exported.db"), ExportOutcome::Done);
  const QString path = outputPath("exported.db");
  const test::ProgramResult shell = test::runProgram(
      "sqlite3", {path,
                  "PRAGMA integrity_check; SELECT count(*), max(id), (SELECT count(*) FROM "
                  "origemail) FROM email;"});
  const QString count = QString::number(list.listCount);
  EXPECT_EQ(shell.out, "ok\n" + count + '|' + count + '|' + count + '\n')
      << shell.err.toStdString();

  // Row by row under the new ids 1, 2, 3, ...: every text is escaped as storing escapes it,
  // so its backslashes arrive doubled.
  const QString rows = QStringLiteral(
      "SELECT e.date_fld,e.from_fld,e.to_fld,e.subj_fld,e.body_fld,e.mailto,e.mailbox,"
      "t.cat_fld,t.key_fld,t.notes_fld,o.orig_fld,(SELECT group_concat(type_fld||'/'||"
      "filename_fld||'/'||encode_fld||'/'||attach_fld,'|') FROM attachments a WHERE a.id=e.id),"
      "e.numAttach,t.priority_fld FROM email e LEFT JOIN tags t ON t.id=e.id LEFT JOIN origemail "
      "o ON o.id=e.id WHERE e.id=%1");
  for (int i = 0; i < archive.idList.size(); ++i) {
    QStringList expected = tableOf(dbPath, rows.arg(archive.idList[i])).value(0);
    for (int column = 1; column < 12; ++column)
      expected[column] = doubledBackslashes(expected[column]);
    EXPECT_EQ(tableOf(path, rows.arg(i + 1)).value(0), expected) << "message " << i + 1;
  }
  // Quillery opens it as an archive of its own and lists every message.
  archive.openDB(path);
  retrieve();
  EXPECT_EQ(list.listCount, archive.idList.size());
  EXPECT_FALSE(archive.openFailed);
}

}  // namespace
}  // namespace quillery::exporting
