// The store run's transaction: what another connection (a second process, or the archive
// after a kill) sees of it at each interval, and the failures of its statements.
#include <QThread>

#include "StoreFixture.h"
#include "ingest/StoreTransaction.h"

namespace quillery::ingest {
namespace {

class StoreTransactionTest : public StoreFixture {
 protected:
  // Stores a message inside the transaction and counts it done; returns the email rows that
  // a connection of its own sees committed.
  int storeOne(StoreTransaction& transaction) {
    reader.storeInDB(record(QStringLiteral("Message %1").arg(++stored_), "BODY:b\nENDOFBODY:\n"));
    transaction.messageDone();
    return number("SELECT count(*) FROM email");
  }
  int stored_ = 0;
};

TEST_F(StoreTransactionTest, WholeMessagesAreCommittedUnderneathAtEachInterval) {
  StoreTransaction transaction(archive, storeLog, {3, 3600000});
  transaction.begin();
  EXPECT_EQ((QList<int>{storeOne(transaction), storeOne(transaction), storeOne(transaction),
                        storeOne(transaction)}),
            (QList<int>{0, 0, 3, 3}));
  // The run's own connection stays inside a transaction all along.
  EXPECT_TRUE(archive.storeRunUnderWay);
  EXPECT_FALSE(archive.exec(QStringLiteral("BEGIN TRANSACTION")).ok());
  transaction.end();
  EXPECT_EQ(number("SELECT count(*) FROM email"), 4);
  EXPECT_FALSE(archive.storeRunUnderWay);
  transaction.end();  // once only

  // Time: a message waits until the interval's time is over, also when no other follows.
  StoreTransaction timed(archive, storeLog, {1000, 200});
  timed.begin();
  EXPECT_EQ(storeOne(timed), 4);
  timed.commitIfDue();
  EXPECT_EQ(number("SELECT count(*) FROM email"), 4);
  QThread::msleep(250);
  timed.commitIfDue();
  EXPECT_EQ(number("SELECT count(*) FROM email"), 5);
  timed.end();
  EXPECT_EQ(storeLogText(), QString());
}

TEST_F(StoreTransactionTest, AFailingBeginOrCommitIsLoggedAndStoringGoesOn) {
  sql(QStringLiteral("BEGIN TRANSACTION"));
  StoreTransaction transaction(archive, storeLog, {1, 3600000});
  transaction.begin();
  EXPECT_EQ(storeLogText(), "SQL error: cannot start a transaction within a transaction\n");
  // Someone else's COMMIT: the interval's COMMIT finds no transaction and is logged, its
  // BEGIN opens the next one.
  sql(QStringLiteral("COMMIT TRANSACTION"));
  EXPECT_EQ(storeOne(transaction), 1);
  EXPECT_TRUE(storeLogText().endsWith("SQL error: cannot commit - no transaction is active\n"))
      << storeLogText().toStdString();
  EXPECT_EQ(storeOne(transaction), 2);
  transaction.end();
  EXPECT_EQ(storeLogText().count("SQL error"), 2);
}

}  // namespace
}  // namespace quillery::ingest
