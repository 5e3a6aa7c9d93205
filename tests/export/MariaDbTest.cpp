// The SQL script loaded into a real MariaDB server that the test starts on a private socket
// and reads back. Where the server reads a value differently from the archive, it does so
// because of the script's own rules, kept as they stand:
// - from, to, mailbox and mailto go out with their backslashes as they are, so the server
//   reads a backslash there as the start of an escape: "\\" is one backslash, "\n" a line
//   feed, "\t" a tab, and so on (the archive holds every backslash of the mail twice, so
//   these fields come back as the mail had them);
// - a body loses its list of attachments ("ATTACHMENTS:" and what follows), and a raw
//   source its plist trailer;
// - attachment data loses the white space at its ends, and data flagged base64 (without a
//   quote or a backslash in it) is kept inside a small MIME wrapper;
// - in the server's default (strict) mode, a value longer than its varchar(127) column and
//   a character beyond the Basic Multilingual Plane (the script declares "utf8", which is
//   MariaDB's three-byte form) stop the load; loaded as the README says, with sql_mode and
//   old_mode emptied, the long value is cut to 127 characters and the four-byte character
//   is kept.
#include "ExportFixture.h"
#include "MariaDbServer.h"
#include "StoredArchive.h"
#include "export/MessageRows.h"
#include "export/SqlDumpExporter.h"
#include "text/LeadingInt.h"
#include "text/PlistTrailer.h"

namespace quillery::exporting {
namespace {

// How the README loads a script whose values do not fit the server's default mode.
constexpr char kReadmeInitCommand[] = "SET SESSION sql_mode='', old_mode=''";

// A string literal as the server reads it when backslashes are escapes.
QString readAsEscaped(const QString& text) {
  static const QHash<QChar, QChar> kEscapes = {{'0', QChar(0)}, {'b', '\b'}, {'n', '\n'},
                                               {'r', '\r'},     {'t', '\t'}, {'Z', QChar(26)}};
  QString out;
  for (qsizetype i = 0; i < text.size(); ++i) {
    if (text[i] != u'\\' || i + 1 == text.size()) {
      out += text[i];
      continue;
    }
    const QChar next = text[++i];
    if (next == u'%' || next == u'_')
      out += u'\\';
    out += kEscapes.value(next, next);
  }
  return out;
}

// The first row that differs, shortened to the part around the first different character,
// or "" when the lists are the same (a whole table would make an unreadable failure).
QString firstDifference(const QStringList& got, const QStringList& want) {
  for (qsizetype i = 0; i < std::max(got.size(), want.size()); ++i) {
    const QString a = got.value(i, "(no row)");
    const QString b = want.value(i, "(no row)");
    if (a == b)
      continue;
    qsizetype at = 0;
    while (at < a.size() && at < b.size() && a[at] == b[at])
      ++at;
    return a.left(40) + " ... got: " + a.mid(std::max<qsizetype>(0, at - 20), 60) +
           " wanted: " + b.mid(std::max<qsizetype>(0, at - 20), 60);
  }
  return {};
}

bool hasFourByteCharacter(const QString& text) {
  for (const QChar c : text)
    if (c.isHighSurrogate())
      return true;
  return false;
}

class MariaDbTest : public ExportFixture {
 protected:
  static void SetUpTestSuite() {
    if (!test::MariaDbServer::missingPrograms().isEmpty())
      return;
    server = new test::MariaDbServer;
    startFailure = server->start();
  }
  static void TearDownTestSuite() {
    delete server;  // stops the server, also after failed tests
    server = nullptr;
  }
  void SetUp() override {
    const QString missing = test::MariaDbServer::missingPrograms();
    if (!missing.isEmpty())
      GTEST_SKIP() << missing.toStdString();
    ASSERT_EQ(startFailure, QString());
    const QString failure = test::StoredArchive::copyTo(dbPath);
    if (!failure.isEmpty())
      GTEST_SKIP() << failure.toStdString();
    ExportFixture::SetUp();
  }

  QString exportScript(const QString& name, int firstId) {
    const QString path = outputPath(name);
    QString exportPath;
    EXPECT_EQ(SqlDumpExporter(ports, exportPath).writeScript(path, firstId, true),
              ExportOutcome::Done);
    return path;
  }

  // The rows the server should hold for the listed messages, table by table, each row's
  // columns joined by '|', under the new ids from firstId.
  QStringList expectedRows(int firstId) const;
  QStringList serverRows(const QString& database) const;

  static inline test::MariaDbServer* server = nullptr;
  static inline QString startFailure;
};

QStringList MariaDbTest::expectedRows(int firstId) const {
  QStringList out;
  for (int i = 0; i < list.emailRows.size(); ++i) {
    const int id = list.rowAt(i).emailID();
    const QString newId = QString::number(firstId + i);
    QStringList email = tableOf(dbPath, QStringLiteral("SELECT from_fld,to_fld,subj_fld,date_fld,"
                                                       "mailbox,mailto,body_fld,numAttach FROM "
                                                       "email WHERE id=%1")
                                            .arg(id))
                            .value(0);
    for (const int escaped : {0, 1, 4, 5})
      email[escaped] = readAsEscaped(email[escaped]);
    MessageRows::cutAttachmentList(email[6]);
    out.append("email|" + newId + '|' + email.join('|'));
    for (QStringList tags : tableOf(dbPath, QStringLiteral("SELECT cat_fld,key_fld,priority_fld,"
                                                           "notes_fld FROM tags WHERE id=%1")
                                                .arg(id))) {
      if (tags.join("").isEmpty())
        continue;
      tags[2] = QString::number(text::leadingInt(tags[2]));
      out.append("tags|" + newId + '|' + tags.join('|'));
    }
    for (QStringList source :
         tableOf(dbPath, QStringLiteral("SELECT orig_fld FROM origemail WHERE id=%1").arg(id))) {
      text::PlistTrailer::stripPlist(source[0]);
      out.append("origemail|" + newId + '|' + source[0]);
    }
    for (QStringList a : tableOf(dbPath, QStringLiteral("SELECT type_fld,encode_fld,filename_fld,"
                                                        "attach_fld FROM attachments WHERE id=%1")
                                             .arg(id))) {
      a[3] = a[3].trimmed();
      a[1] = QString::number(text::leadingInt(a[1]));
      if (a[1] != "0" && !a[3].contains('\'') && !a[3].contains('\\'))
        a[3] = "MIME-Version: 1.0\nContent-Type: " + a[0] + "; name=\"" + a[2] +
               "\"\nContent-Transfer-Encoding: Base64\n\n" + a[3];
      out.append("attachments|" + newId + '|' + a.join('|'));
    }
  }
  out.sort();
  return out;
}

QStringList MariaDbTest::serverRows(const QString& database) const {
  const QStringList queries = {
      "SELECT 'email',id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,body_fld,numAttach "
      "FROM email",
      "SELECT 'tags',id,cat_fld,key_fld,priority_fld,notes_fld FROM tags",
      "SELECT 'origemail',id,orig_fld FROM origemail",
      "SELECT 'attachments',id,type_fld,base64,filename_fld,attach_fld FROM attachments"};
  QStringList out;
  for (QString query : queries) {
    // Every column travels as hex, so no client formatting touches it.
    const QString columns = query.section(" FROM ", 0, 0).mid(7);
    QStringList wrapped;
    for (const QString& column : columns.split(','))
      wrapped.append("HEX(CAST(" + column + " AS CHAR))");
    query = "SELECT " + wrapped.join(',') + " FROM " + query.section(" FROM ", 1);
    for (const QStringList& row : server->rows(database, query))
      out.append(row.join('|'));
  }
  out.sort();
  return out;
}

TEST_F(MariaDbTest, AScriptOfMessagesThatFitLoadsInTheDefaultModeAndReadsBackAsTheArchive) {
  retrieve();
  // The messages whose values fit the tables' varchar(127) columns and MariaDB's utf8.
  QStringList fitting;
  for (const search::Emailrow& row : list.emailRows) {
    const QString id = QString::number(row.emailID());
    const QStringList values =
        tableOf(dbPath,
                "SELECT from_fld,to_fld,subj_fld,mailbox,mailto,body_fld,ifnull((SELECT "
                "max(max(length(type_fld),length(filename_fld))) FROM attachments a WHERE "
                "a.id=e.id),0),ifnull((SELECT group_concat(attach_fld) FROM attachments a WHERE "
                "a.id=e.id),''),ifnull((SELECT orig_fld FROM origemail o WHERE o.id=e.id),'') "
                "FROM email e WHERE id=" +
                    id)
            .value(0);
    bool fits = values[6].toInt() <= 127;
    for (int i = 0; i < values.size(); ++i)
      fits = fits && !hasFourByteCharacter(values[i]) && (i > 4 || values[i].size() <= 127);
    if (fits)
      fitting.append(id);
  }
  ASSERT_GT(fitting.size(), 80);
  retrieve(archive::listStatement(
      QStringLiteral(" WHERE id IN (%1) ORDER BY id").arg(fitting.join(QLatin1Char(',')))));
  // Descending, numbered from 1000: the numbers follow the order shown.
  list.clickColumn("emailDate");
  list.clickColumn("emailDate");
  const test::ProgramResult loaded = server->load(exportScript("Fitting.sql", 1000));
  ASSERT_EQ(loaded.exitCode, 0) << loaded.err.toStdString();
  EXPECT_EQ(firstDifference(serverRows("Fitting"), expectedRows(1000)), QString());
}

TEST_F(MariaDbTest, LongValuesAndFourByteCharactersLoadTheWayTheReadmeSays) {
  retrieve();
  const QString script = exportScript("Everything.sql", 1);
  const test::ProgramResult strict = server->load(script);
  EXPECT_NE(strict.exitCode, 0);
  EXPECT_TRUE(strict.err.contains("Data too long") || strict.err.contains("Incorrect string"))
      << strict.err.toStdString();

  ASSERT_EQ(server->execute("DROP DATABASE Everything"), QString());
  const test::ProgramResult relaxed = server->load(script, kReadmeInitCommand);
  ASSERT_EQ(relaxed.exitCode, 0) << relaxed.err.toStdString();
  EXPECT_EQ(
      server->rows("Everything", "SELECT HEX(CAST(COUNT(*) AS CHAR)) FROM email").value(0).value(0),
      QString::number(list.listCount));
  const QString longSubject =
      tableOf(dbPath, "SELECT subj_fld FROM email WHERE subj_fld LIKE 'LLLL%'").value(0).value(0);
  const QString emoji = QStringLiteral("Party 🎉 time");
  EXPECT_EQ(server->rows("Everything",
                         "SELECT HEX(subj_fld) FROM email WHERE subj_fld LIKE "
                         "'LLLL%' OR subj_fld LIKE 'Party%' ORDER BY id"),
            (QList<QStringList>{{longSubject.left(127)}, {emoji}}));
}

}  // namespace
}  // namespace quillery::exporting
