// Whole store runs with the real parser tool: generated mail whose every field is known, the
// shared corpus's mbox files, and runs that are cancelled, quit or interrupted by alerts.
#include <QDir>
#include <QFile>
#include <QTest>
#include <QTimer>

#include "StoreRunFixture.h"
#include "support/MailFixtures.h"

namespace quillery::ingest {
namespace {

using test::MailFixtures;

class StoreRunEndToEndTest : public StoreRunFixture {
 protected:
  void SetUp() override {
    StoreRunFixture::SetUp();
    ASSERT_TRUE(QFile::exists(test::toolPath(QStringLiteral("domail"))))
        << "the parser tool is part of the build";
  }
  QString generatedMbox(int messages) {
    const QString path = dir.filePath(QStringLiteral("generated.mbox"));
    EXPECT_TRUE(MailFixtures::writeMbox(path, messages));
    return path;
  }
  int idOf(int i) const {
    return count(QStringLiteral("SELECT id FROM email WHERE from_fld LIKE 'Sender %1 <%'").arg(i));
  }
};

TEST_F(StoreRunEndToEndTest, GeneratedMailIsStoredFieldByField) {
  const QString summary = storeMbox({generatedMbox(60)});

  EXPECT_EQ(summary, QStringLiteral("Parsed: 60\nProcessed: 60\nStored: 60\nDuplicates "
                                    "replaced: 0\nlast file parsed: ") +
                         run->lastProgressText() + QLatin1Char('\n'));
  EXPECT_TRUE(run->lastProgressText().contains(MailFixtures::subject(59)));
  // No SQL error was logged: the store log holds the summary alone.
  EXPECT_EQ(test::readFile(dbPath() + QStringLiteral(".storelog")), summary);
  EXPECT_EQ(list.listCount, 60);
  // Every tenth message read redraws the count while the run stores (the listing at the end
  // counts again).
  EXPECT_EQ(progress.events.mid(0, progress.events.indexOf(QStringLiteral("close")))
                .filter(QStringLiteral("count:")),
            (QStringList{"count:0", "count:10", "count:20", "count:30", "count:40", "count:50",
                         "count:60"}));
  EXPECT_EQ(rows(QStringLiteral("SELECT count(*), (SELECT count(*) FROM origemail), (SELECT "
                                "count(*) FROM attachments) FROM email")),
            QStringList{"60|60|12"});  // every fifth message has an attachment

  // Decoded headers, double quotes, and backslashes that reach the archive doubled.
  QStringList expected;
  for (int i = 2; i <= 4; ++i)
    expected.append(QStringLiteral("2018-01-01 10:0%1:00|%2|Archive Owner <owner@example.org>|%3|"
                                   "Hello number %1.\nPath C:\\\\temp\\\\%1\nRegards%4")
                        .arg(i)
                        .arg(MailFixtures::subject(i))
                        .arg(int(i == 2))
                        .arg(i == 2 ? "\n\nATTACHMENTS:" : ""));
  EXPECT_EQ(rows(QStringLiteral("SELECT date_fld, subj_fld, to_fld, numAttach, body_fld FROM email "
                                "WHERE date_fld BETWEEN '2018-01-01 10:02' AND '2018-01-01 10:05' "
                                "ORDER BY date_fld")),
            expected);
  // The attachment in base64 as the tool delivered it, and the message's source.
  const QString seven = QString::number(idOf(7));
  EXPECT_EQ(rows("SELECT filename_fld, encode_fld FROM attachments WHERE id=" + seven),
            QStringList{"file7.bin|1"});
  EXPECT_EQ(QByteArray::fromBase64(
                scalar("SELECT attach_fld FROM attachments WHERE id=" + seven).toLatin1()),
            MailFixtures::attachmentBytes(7));
  EXPECT_TRUE(scalar("SELECT orig_fld FROM origemail WHERE id=" + seven)
                  .contains(QStringLiteral("Message-ID: <gen7@fixtures.example>")));
}

TEST_F(StoreRunEndToEndTest, CancellingHalfWayCommitsWhatWasStored) {
  constexpr int kMessages = 300;
  progress.onEvent = [this](const QString& event) {
    if (event == "count:50")
      run->cancelParse();
  };
  const QString summary = storeMbox({generatedMbox(kMessages)});

  const int stored = count(QStringLiteral("SELECT count(*) FROM email"));
  EXPECT_TRUE(stored >= 50 && stored < kMessages) << stored;
  EXPECT_TRUE(summary.contains(QStringLiteral("\nStored: %1\n").arg(stored)))
      << summary.toStdString();
  EXPECT_EQ(scalar(QStringLiteral("PRAGMA integrity_check")), "ok");
  EXPECT_FALSE(run->isRunning());
  EXPECT_FALSE(archive.openFailed);
  for (const char* suffix : {".log", ".tmp", ".raw"})
    EXPECT_FALSE(QFile::exists(dbPath() + QLatin1String(suffix))) << suffix;

  // The archive takes the rest in a later run.
  progress.onEvent = nullptr;
  const QString rest = storeMbox({dir.filePath(QStringLiteral("generated.mbox"))});
  EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM email")), kMessages);
  EXPECT_TRUE(rest.contains(QStringLiteral("Duplicates replaced: %1\n").arg(stored)))
      << rest.toStdString();
  EXPECT_EQ(list.emailRows.size(), kMessages) << "the new copies are listed, once each";
}

// While an alert is open its event loop runs and the tool, already answered, goes on; the
// user may also choose actions that would reopen the archive. None of it may mix messages up
// or lose what the run stored.
TEST_F(StoreRunEndToEndTest, AlertsAndOtherActionsDuringARunLeaveItsMessagesWhole) {
  constexpr int kMessages = 25;
  const QString mbox = generatedMbox(kMessages);
  storeMbox({mbox});
  // A note with a double quote makes the carried-over tags fail as the copy is replaced.
  archive.openDB(dbPath());
  archive.exec(QStringLiteral("INSERT INTO tags VALUES(%1,'c','k',1,'say \"hi\"')").arg(idOf(2)));
  archive.close();

  dialogs.alerts.clear();
  dialogs.whileShown = [](const platform::Alert& alert) {
    if (alert.style == platform::AlertStyle::Critical)
      QTest::qWait(300);
  };
  bool tried = false;
  progress.onEvent = [this, &tried](const QString& event) {
    // The count reaches 10 again while the stored messages are listed, after the run.
    if (event != "count:10" || tried)
      return;
    tried = true;
    ASSERT_TRUE(run->isRunning());
    EXPECT_FALSE(preparation->setStoreDate(dbPath()).has_value());
    EXPECT_FALSE(preparation->openMbox());
  };
  storeMbox({mbox});

  EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM email")), kMessages);
  // Each attachment belongs to its own message, and none to a message that is gone (message
  // 2's carried-over tags fail, which ends its storing early).
  EXPECT_EQ(rows(QStringLiteral("SELECT from_fld, group_concat(filename_fld) FROM attachments "
                                "LEFT JOIN email USING(id) WHERE id<>%1 GROUP BY id ORDER BY id")
                     .arg(idOf(2))),
            (QStringList{"Sender 7 <sender7@example.com>|file7.bin",
                         "Sender 12 <sender12@example.com>|file12.bin",
                         "Sender 17 <sender17@example.com>|file17.bin",
                         "Sender 22 <sender22@example.com>|file22.bin"}));
  // The run's end came after the last alert of its messages, not inside one.
  ASSERT_FALSE(dialogs.alerts.isEmpty());
  EXPECT_EQ(dialogs.alerts.last().title, "Done Storing Email");
  ASSERT_EQ(dialogs.alerts.size(), 4);  // the confirmation, two failing tags rows, the end
  EXPECT_TRUE(dialogs.alerts[1].message.startsWith(QStringLiteral("SQL error: ")));
  EXPECT_TRUE(dialogs.openPanels.isEmpty());
}

TEST_F(StoreRunEndToEndTest, TheCorpusMboxFilesAreStoredWithoutSqlErrors) {
  const QString corpus = test::corpusDir();
  if (corpus.isEmpty())
    GTEST_SKIP() << "the shared mail corpus (../shared/corpus) is not here";
  QStringList mboxes;
  for (const QString& name :
       QDir(corpus + QStringLiteral("/mbox")).entryList({QStringLiteral("*.mbox")}, QDir::Files))
    mboxes.append(corpus + QStringLiteral("/mbox/") + name);
  ASSERT_FALSE(mboxes.isEmpty());
  const QString summary = storeMbox(mboxes);

  // 6 + 4 + 1 + 29 + 2 messages; the duplicates of a real mailing list fold together.
  const int stored = count(QStringLiteral("SELECT count(*) FROM email"));
  EXPECT_EQ(counters.parsedCount, 0);  // reset after the summary
  EXPECT_TRUE(summary.startsWith(QStringLiteral("Parsed: 42\nProcessed: 42\n")) &&
              summary.contains(QStringLiteral("\nDuplicates replaced: %1\n").arg(42 - stored)))
      << summary.toStdString();
  EXPECT_EQ(test::readFile(dbPath() + QStringLiteral(".storelog")), summary);
  EXPECT_EQ(rows(QStringLiteral("SELECT count(*), (SELECT * FROM pragma_integrity_check) FROM "
                                "origemail")),
            QStringList{QString::number(stored) + "|ok"});
  EXPECT_GT(count(QStringLiteral("SELECT count(*) FROM email WHERE subj_fld LIKE '%Russia%' OR "
                                 "body_fld LIKE '%From Russia with love%'")),
            0);
}

}  // namespace
}  // namespace quillery::ingest
