// The shared corpus stored by the real parser tool, searched by every row of the builder's
// table and compared with a plain scan, and every Base64 attachment decoded and compared with
// the bytes Python's email package finds in the original mail.
#include <sqlite3.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSet>
#include <QSignalSpy>
#include <ctime>

#include "IndexedMail.h"
#include "SearchFixture.h"
#include "SearchRows.h"
#include "ingest/StoreRun.h"
#include "search/AttachmentLink.h"
#include "support/TestEnvironment.h"

namespace quillery::search {
namespace {

// The single messages of the corpus as an Apple Mail message file each.
QByteArray emlx(const QByteArray& message) {
  return QByteArray::number(message.size()) + "       \n" + message +
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n</dict>\n"
         "</plist>\n";
}

// Stores the whole corpus into a fresh archive, once for the program: the mbox files, then
// the Apple Mail accounts and the single messages as one more account under HOME.
QString corpusArchive() {
  static QTemporaryDir dir;
  static QString stored;
  if (!stored.isEmpty() || test::corpusDir().isEmpty())
    return stored;
  qputenv("TZ", "UTC");
  tzset();
  const QString corpus = test::corpusDir();
  const QString mail = QDir::homePath() + QStringLiteral("/Library/Mail");
  const QString samples = mail + QStringLiteral("/Samples/INBOX.mbox/Messages/");
  EXPECT_TRUE(QDir().mkpath(samples));
  QStringList accounts{QStringLiteral("Samples")};
  for (const QString& account :
       QDir(corpus + "/emlx/Mail").entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
    QFile::link(corpus + "/emlx/Mail/" + account, mail + "/" + account);
    accounts.append(account);
  }
  const QStringList singles = QDir(corpus + "/mime").entryList({"*.eml"}, QDir::Files, QDir::Name);
  for (int i = 0; i < singles.size(); ++i) {
    QFile file(corpus + "/mime/" + singles[i]);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    test::writeFile(samples + QString::number(i + 1) + ".emlx", emlx(file.readAll()));
  }

  QStringList mboxes;
  for (const QString& name : QDir(corpus + "/mbox").entryList({"*.mbox"}, QDir::Files))
    mboxes.append(corpus + "/mbox/" + name);
  const QString path = dir.filePath(QStringLiteral("corpus.db"));
  if (!IndexedMail::store(path, mboxes, accounts))
    return {};
  stored = path;
  return stored;
}

// Every message with its attachment names and tags, read on a connection of the test's own.
QList<ScanRecord> scan(const QString& path) {
  QList<ScanRecord> out;
  sqlite3* db = nullptr;
  sqlite3_open_v2(path.toUtf8().constData(), &db, SQLITE_OPEN_READONLY, nullptr);
  const char* sql =
      "SELECT e.id,date_fld,from_fld,to_fld,subj_fld,mailbox,body_fld,t.id,cat_fld,key_fld,"
      "notes_fld,priority_fld,(SELECT group_concat(filename_fld,char(10)) FROM attachments a "
      "WHERE a.id=e.id) FROM email e LEFT JOIN tags t ON t.id=e.id";
  sqlite3_exec(
      db, sql,
      [](void* context, int, char** v, char**) {
        const auto s = [v](int i) { return QString::fromUtf8(v[i] ? v[i] : ""); };
        ScanRecord r{atoi(v[0]),
                     s(1),
                     s(2),
                     s(3),
                     s(4),
                     s(5),
                     s(6),
                     s(12).split('\n', Qt::SkipEmptyParts),
                     v[7] != nullptr,
                     s(8),
                     s(9),
                     s(10),
                     v[11] ? atoi(v[11]) : 0};
        static_cast<QList<ScanRecord>*>(context)->append(r);
        return 0;
      },
      &out, nullptr);
  sqlite3_close(db);
  return out;
}

class SearchCorpusTest : public SearchFixture {
 protected:
  void SetUp() override {
    const QString stored = corpusArchive();
    if (test::corpusDir().isEmpty())
      GTEST_SKIP() << "the shared mail corpus (../shared/corpus) is not here";
    ASSERT_FALSE(stored.isEmpty()) << "the corpus could not be stored";
    QFile::remove(dbPath);
    ASSERT_TRUE(QFile::copy(stored, dbPath));
    SearchFixture::SetUp();
  }
  // Tags a few messages by what a plain scan finds, as a user would through the tag panel.
  void tagSome() {
    const QList<ScanRecord> all = scan(dbPath);
    const auto tagWhere = [&](const std::function<bool(const ScanRecord&)>& pick,
                              const TagValues& values) {
      QList<int> rows;
      for (int row = 0; row < list.emailRows.size(); ++row)
        for (const ScanRecord& r : all)
          if (r.id == list.rowAt(row).emailID() && pick(r))
            rows.append(row);
      ASSERT_FALSE(rows.isEmpty());
      ASSERT_TRUE(tagging.addTags(values, rows));
    };
    search.browseDatabase(form, dbPath);
    tagWhere([](const ScanRecord& r) { return r.id % 3 == 0; },
             {"Work", "urgent", "call back", "High"});
    tagWhere([](const ScanRecord& r) { return r.id % 5 == 1; },
             {"Home", "", "say \"hi\"", "Lowest"});
    tagWhere([](const ScanRecord& r) { return r.id % 7 == 2; },
             {"Work Stuff", "later", "", "None"});
  }
};

TEST_F(SearchCorpusTest, EveryRowFindsWhatAPlainScanFinds) {
  tagSome();
  const QList<ScanRecord> all = scan(dbPath);
  ASSERT_GT(all.size(), 60);
  for (const SearchRow& row : searchRows()) {
    form = SearchForm{};
    row.fill(form);
    ASSERT_TRUE(search.retrieveEmails(form, dbPath)) << row.name;
    QSet<int> found, expected;
    for (const Emailrow& r : list.emailRows)
      found.insert(r.emailID());
    for (const ScanRecord& r : all)
      if (row.matches(r))
        expected.insert(r.id);
    EXPECT_EQ(found, expected) << row.name;
    EXPECT_EQ(list.listCount, found.size()) << row.name << ": each message listed once";
    // Date order, whatever the row asked.
    for (int i = 1; i < list.emailRows.size(); ++i)
      EXPECT_LE(list.emailRows[i - 1].emailDate().left(19), list.emailRows[i].emailDate().left(19));
  }
  EXPECT_TRUE(dialogs.alerts.last().title == "Done tagging email");
}

TEST_F(SearchCorpusTest, EveryBase64AttachmentDecodesToTheBytesOfTheOriginalMail) {
  const QString corpus = test::corpusDir();
  QProcess python;
  QStringList arguments{QStringLiteral(QUILLERY_SOURCE_DIR "/tests/search/attachment_payloads.py"),
                        corpus + "/emlx/Mail"};
  for (const QString& name : QDir(corpus + "/mbox").entryList({"*.mbox"}, QDir::Files))
    arguments.append(corpus + "/mbox/" + name);
  for (const QString& name : QDir(corpus + "/mime").entryList({"*.eml"}, QDir::Files))
    arguments.append(corpus + "/mime/" + name);
  python.start(QStringLiteral("python3"), arguments);
  ASSERT_TRUE(python.waitForFinished(60000) && python.exitCode() == 0)
      << python.readAllStandardError().constData();
  const QList<QByteArray> digests = python.readAllStandardOutput().split('\n');
  const QSet<QByteArray> original(digests.begin(), digests.end());

  const QStringList encoded =
      test::rowsOf(dbPath, "SELECT id, rowid FROM attachments WHERE encode_fld=1 ORDER BY rowid");
  ASSERT_GT(encoded.size(), 40);
  for (const QString& row : encoded) {
    const int id = row.section('|', 0, 0).toInt();
    // The attachment's position among its message's rows, as the message view numbers them.
    const QStringList names = test::rowsOf(
        dbPath, QStringLiteral("SELECT rowid, filename_fld FROM attachments WHERE id=%1").arg(id));
    int position = 0;
    while (names[position].section('|', 0, 0) != row.section('|', 1, 1))
      ++position;
    const QString link =
        AttachmentLink::pathFor(tempDir(), position, names[position].section('|', 1).remove('\n'));
    ASSERT_TRUE(opener.fetchAttachment(link, id)) << link.toStdString();
    QFile file(link);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray digest =
        QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256).toHex();
    EXPECT_TRUE(original.contains(digest)) << link.toStdString();
  }
}

}  // namespace
}  // namespace quillery::search
