// The SQL script loaded into a real MariaDB server that the test starts on a private socket
// and reads back. Where the server reads a value differently from the archive, the script's
// own rules, kept as they stand, make it so:
// - from, to, mailbox and mailto go out with their backslashes as they are, so the server
//   reads a backslash there as the start of an escape ("\\" is one backslash, "\n" a line
//   feed); the archive holds every backslash of the mail twice, so these fields come back
//   as the mail had them;
// - a body loses its list of attachments ("ATTACHMENTS:" and what follows), a raw source
//   its plist trailer, attachment data the white space at its ends; data flagged base64
//   (without a quote or a backslash in it) is kept inside a small MIME wrapper;
// - in the server's default (strict) mode a value longer than its varchar(127) column, or a
//   character beyond the Basic Multilingual Plane (the script declares "utf8", MariaDB's
//   three-byte form), stops the load; loaded as the README says, with sql_mode and old_mode
//   emptied, the long value is cut to 127 characters and the four-byte character kept.
#include "ExportFixture.h"
#include "MariaDbServer.h"
#include "StoredArchive.h"
#include "export/MessageRows.h"
#include "export/SqlDumpExporter.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

// A string literal as the server reads it where backslashes are escapes.
QString readAsEscaped(const QString& text) {
  static const QHash<QChar, QChar> kEscapes = {{'0', QChar(0)}, {'b', '\b'}, {'n', '\n'},
                                               {'r', '\r'},     {'t', '\t'}, {'Z', QChar(26)}};
  QString out;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] != u'\\' || i + 1 == text.size()) {
      out += text[i];
    } else {
      const QChar next = text[++i];
      out += (next == u'%' || next == u'_') ? QString('\\') + next : kEscapes.value(next, next);
    }
  }
  return out;
}

class MariaDbTest : public ExportFixture {
 protected:
  static void SetUpTestSuite() {
    if (test::MariaDbServer::missingPrograms().isEmpty())
      startFailure = server.start();
  }
  static void TearDownTestSuite() { server.stop(); }  // also after failed tests
  void SetUp() override {
    if (const QString missing = test::MariaDbServer::missingPrograms(); !missing.isEmpty())
      GTEST_SKIP() << missing.toStdString();
    ASSERT_EQ(startFailure, QString());
    if (const QString failure = test::StoredArchive::copyTo(dbPath); !failure.isEmpty())
      GTEST_SKIP() << failure.toStdString();
    ExportFixture::SetUp();
  }
  // The rows the server should hold for the list, numbered from firstId, each table's
  // columns joined by '|', sorted.
  QStringList expectedRows(int firstId) const;

  static inline test::MariaDbServer server;
  static inline QString startFailure;
};

QStringList MariaDbTest::expectedRows(int firstId) const {
  QStringList out;
  const auto rowsOf = [this](const char* sql, int id) {
    return tableOf(dbPath, QString::fromLatin1(sql).arg(id));
  };
  for (int i = 0; i < list.emailRows.size(); ++i) {
    const int id = list.rowAt(i).emailID();
    const QString newId = QString::number(firstId + i) + '|';
    QStringList email = rowsOf(
                            "SELECT from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,"
                            "body_fld,numAttach FROM email WHERE id=%1",
                            id)
                            .value(0);
    for (const int escaped : {0, 1, 4, 5})
      email[escaped] = readAsEscaped(email[escaped]);
    MessageRows::cutAttachmentList(email[6]);
    out.append("email|" + newId + email.join('|'));
    for (const QStringList& tags : rowsOf("SELECT cat_fld,key_fld,priority_fld+0,notes_fld FROM "
                                          "tags WHERE id=%1 AND cat_fld||key_fld||priority_fld||"
                                          "notes_fld<>''",
                                          id))
      out.append("tags|" + newId + tags.join('|'));
    for (QStringList source : rowsOf("SELECT orig_fld FROM origemail WHERE id=%1", id)) {
      text::PlistTrailer::stripPlist(source[0]);
      out.append("origemail|" + newId + source[0]);
    }
    for (QStringList a : rowsOf("SELECT type_fld,encode_fld+0,filename_fld,trim(attach_fld,"
                                "char(9,10,11,12,13,32)) FROM attachments WHERE id=%1",
                                id)) {
      if (a[1] != "0" && !a[3].contains('\'') && !a[3].contains('\\'))
        a[3] = "MIME-Version: 1.0\nContent-Type: " + a[0] + "; name=\"" + a[2] +
               "\"\nContent-Transfer-Encoding: Base64\n\n" + a[3];
      out.append("attachments|" + newId + a.join('|'));
    }
  }
  out.sort();
  return out;
}

// The first row that differs, shortened around its first different character; "" when the
// lists are the same (a whole table would make an unreadable failure).
QString firstDifference(const QStringList& got, const QStringList& wanted) {
  for (qsizetype i = 0; i < std::max(got.size(), wanted.size()); ++i) {
    const QString a = got.value(i, "(none)"), b = wanted.value(i, "(none)");
    qsizetype at = 0;
    while (at < a.size() && at < b.size() && a[at] == b[at])
      ++at;
    if (a != b)
      return a.left(30) + "... has " + a.mid(at, 40) + " where " + b.mid(at, 40) + " is wanted";
  }
  return {};
}

TEST_F(MariaDbTest, TheScriptLoadsAndReadsBackAsTheArchiveHoldsIt) {
  retrieve();
  // The messages whose values fit the default mode: no text over 127 characters in a
  // varchar column, no character beyond the Basic Multilingual Plane anywhere.
  QStringList fitting;
  const QString values = QStringLiteral(
      "SELECT max(length(from_fld),length(to_fld),length(subj_fld),length(mailbox),"
      "length(mailto),ifnull((SELECT max(max(length(type_fld),length(filename_fld))) FROM "
      "attachments a WHERE a.id=e.id),0)),body_fld||ifnull((SELECT group_concat(attach_fld) FROM "
      "attachments a WHERE a.id=e.id),'')||ifnull((SELECT orig_fld FROM origemail o WHERE "
      "o.id=e.id),'')||from_fld||to_fld||subj_fld FROM email e WHERE id=%1");
  for (const QString& id : std::as_const(archive.idList)) {
    const QStringList v = tableOf(dbPath, values.arg(id)).value(0);
    if (v[0].toInt() <= 127 &&
        std::none_of(v[1].begin(), v[1].end(), [](QChar c) { return c.isHighSurrogate(); }))
      fitting.append(id);
  }
  ASSERT_GT(fitting.size(), 80);
  retrieve(archive::listStatement(QStringLiteral(" WHERE id IN (%1)").arg(fitting.join(','))));
  // Descending and numbered from 1000: the numbers follow the order shown.
  list.sortDescending = true;
  ASSERT_EQ(run(ExportFormat::Sql, "Fitting.sql", 1000), ExportOutcome::Done);
  const test::ProgramResult loaded = server.load(outputPath("Fitting.sql"));
  ASSERT_EQ(loaded.exitCode, 0) << loaded.err.toStdString();
  EXPECT_EQ(firstDifference(server.tableRows("Fitting"), expectedRows(1000)), QString());

  // The whole archive: the default mode stops at the long values and the emoji; loaded as
  // the README says, everything goes in.
  retrieve();
  ASSERT_EQ(run(ExportFormat::Sql, "Everything.sql"), ExportOutcome::Done);
  const test::ProgramResult strict = server.load(outputPath("Everything.sql"));
  EXPECT_NE(strict.exitCode, 0);
  EXPECT_TRUE(strict.err.contains("Data too long") || strict.err.contains("Incorrect string"))
      << strict.err.toStdString();
  ASSERT_EQ(server.execute("DROP DATABASE Everything"), QString());
  const test::ProgramResult relaxed =
      server.load(outputPath("Everything.sql"), "SET SESSION sql_mode='', old_mode=''");
  ASSERT_EQ(relaxed.exitCode, 0) << relaxed.err.toStdString();
  const QString longSubject = tableOf(dbPath,
                                      "SELECT subj_fld FROM email WHERE subj_fld LIKE "
                                      "'LLLL%'")
                                  .value(0)
                                  .value(0);
  EXPECT_EQ(server.rows("Everything",
                        "SELECT HEX(CAST(COUNT(*) AS CHAR)) FROM email UNION ALL "
                        "SELECT HEX(subj_fld) FROM email WHERE subj_fld LIKE "
                        "'LLLL%' OR subj_fld LIKE 'Party%' ORDER BY 1"),
            (QList<QStringList>{
                {QString::number(list.listCount)}, {longSubject.left(127)}, {"Party 🎉 time"}}));
}

}  // namespace
}  // namespace quillery::exporting
