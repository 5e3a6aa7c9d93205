// A store run killed hard part way, as a power loss or a crash ends it: quillery-cli and its
// parser tool both get SIGKILL while they store generated mail. The archive must then hold
// every message committed before the kill, each one whole, and the next run must take the
// rest as if nothing had happened, whatever the killed run left beside the archive.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <csignal>

#include "support/MailFixtures.h"
#include "archive/TestFiles.h"
#include "ingest/StoreTransaction.h"
#include "support/TestEnvironment.h"

namespace quillery::ingest {
namespace {

constexpr int kMessages = 20000;
// Progress lines come every 1,000 messages; the kill follows the first that shows two whole
// intervals read, so at least one has been committed.
const int kKillAt = 2 * CommitInterval().messages;

class StoreRunKillTest : public ::testing::Test {
 protected:
  void SetUp() override {
    for (const char* tool : {"quillery-cli", "domail"})
      ASSERT_TRUE(QFile::exists(test::toolPath(QLatin1String(tool)))) << tool << " is built";
    ASSERT_TRUE(test::MailFixtures::writeMbox(mbox, kMessages));
  }

  void startStore(QProcess& cli) const {
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), dir.path());
    environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
    cli.setProcessEnvironment(environment);
    cli.start(test::toolPath(QStringLiteral("quillery-cli")),
              {"store", "--archive", db, "--mbox", mbox, "--progress-lines"});
    cli.closeWriteChannel();
  }

  // Stores until the progress shows kKillAt messages read, then kills quillery-cli and the
  // parser tool it runs. Returns the last count shown (0 when the run ended first).
  int storeUntilKilled() const {
    QProcess cli;
    startStore(cli);
    cli.setReadChannel(QProcess::StandardError);
    const QRegularExpression countLine(QStringLiteral(" (\\d+) [\\d.]+$"));
    int shown = 0;
    while (shown < kKillAt && cli.waitForReadyRead(120000)) {
      while (cli.canReadLine()) {
        const auto match = countLine.match(QString::fromUtf8(cli.readLine()).trimmed());
        if (match.hasMatch())
          shown = std::max(shown, match.captured(1).toInt());
      }
    }
    if (shown < kKillAt)
      return 0;
    const qint64 pid = cli.processId();
    // "/usr/bin/nice" runs the tool in its own place, so the tool is the only child.
    QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(pid));
    const QByteArray tool = children.open(QIODevice::ReadOnly) ? children.readAll().trimmed() : "";
    ::kill(pid_t(pid), SIGKILL);
    if (!tool.isEmpty())
      ::kill(pid_t(tool.toLongLong()), SIGKILL);
    cli.waitForFinished(30000);
    return shown;
  }

  QStringList rows(const QString& sql) const { return test::rowsOf(db, sql); }
  int count(const QString& sql) const { return rows(sql).value(0).toInt(); }

  // Each stored message as a run writes it: its source row, and its attachment rows counted
  // in numAttach; and no row of a message that is not there.
  void expectWholeMessages() const {
    EXPECT_EQ(rows(QStringLiteral(
                  "SELECT (SELECT * FROM pragma_integrity_check), "
                  "(SELECT count(*) FROM email WHERE id NOT IN (SELECT id FROM origemail)), "
                  "(SELECT count(*) FROM origemail WHERE id NOT IN (SELECT id FROM email)), "
                  "(SELECT count(*) FROM attachments WHERE id NOT IN (SELECT id FROM email)), "
                  "(SELECT count(*) FROM email WHERE numAttach <> (SELECT count(*) FROM "
                  "attachments WHERE attachments.id = email.id))")),
              QStringList{"ok|0|0|0|0"});
  }

  QTemporaryDir dir;
  QString db = dir.filePath(QStringLiteral("archive"));
  QString mbox = dir.filePath(QStringLiteral("generated.mbox"));
};

TEST_F(StoreRunKillTest, AKilledRunKeepsItsCommittedMessagesWholeAndTheNextRunTakesTheRest) {
  const int shown = storeUntilKilled();
  ASSERT_GE(shown, kKillAt) << "the run ended before it could be killed";
  // What the killed run leaves beside the archive: its record files and the tool's log.
  for (const char* suffix : {".tmp", ".raw", ".log"})
    EXPECT_TRUE(QFile::exists(db + QLatin1String(suffix))) << suffix;

  // Opened as the next program opens it, which rolls back the unfinished interval.
  ASSERT_EQ(test::execOn(db, QStringLiteral("SELECT count(*) FROM email")), QString());
  const int kept = count(QStringLiteral("SELECT count(*) FROM email"));
  // Messages are stored in the order of the mbox and committed at most an interval apart,
  // and the count shown was read with the message before it stored.
  const int interval = CommitInterval().messages;
  EXPECT_TRUE(kept >= shown - interval && kept > 0 && kept < kMessages)
      << kept << " kept, " << shown << " read";
  // The first messages of the mbox, each once: dated one minute apart from 10:00.
  EXPECT_EQ(rows(QStringLiteral("SELECT count(DISTINCT date_fld), min(date_fld), "
                                "(strftime('%s', max(date_fld)) - strftime('%s', min(date_fld))) "
                                "/ 60 + 1 FROM email")),
            QStringList{QStringLiteral("%1|2018-01-01 10:00:00|%1").arg(kept)});
  expectWholeMessages();

  QProcess next;
  startStore(next);
  ASSERT_TRUE(next.waitForFinished(600000));
  EXPECT_EQ(next.exitCode(), 0) << next.readAllStandardError().toStdString();
  const QString summary = QString::fromUtf8(next.readAllStandardOutput());
  EXPECT_TRUE(summary.startsWith(QStringLiteral("Parsed: %1\nProcessed: %1\nStored: %1\n"
                                                "Duplicates replaced: %2\nlast file parsed: ")
                                     .arg(kMessages)
                                     .arg(kept)))
      << summary.toStdString();
  EXPECT_EQ(count(QStringLiteral("SELECT count(*) FROM email")), kMessages);
  expectWholeMessages();
  for (const char* suffix : {".tmp", ".raw", ".log"})
    EXPECT_FALSE(QFile::exists(db + QLatin1String(suffix))) << suffix;
}

}  // namespace
}  // namespace quillery::ingest
