#include "ingest/StoreTransaction.h"

#include "archive/Archive.h"
#include "ingest/StoreLog.h"

namespace quillery::ingest {

StoreTransaction::StoreTransaction(archive::Archive& archive, StoreLog& storeLog,
                                   CommitInterval interval)
    : archive_(archive), storeLog_(storeLog), interval_(interval) {}

void StoreTransaction::begin() {
  run("BEGIN TRANSACTION");
  archive_.storeRunUnderWay = true;
  open_ = true;
  messagesSinceCommit_ = 0;
  sinceCommit_.start();
}

void StoreTransaction::messageDone() {
  if (!open_)
    return;
  ++messagesSinceCommit_;
  if (messagesSinceCommit_ >= interval_.messages || sinceCommit_.hasExpired(interval_.milliseconds))
    commitAndBegin();
}

void StoreTransaction::commitIfDue() {
  if (open_ && messagesSinceCommit_ > 0 && sinceCommit_.hasExpired(interval_.milliseconds))
    commitAndBegin();
}

void StoreTransaction::end() {
  if (!open_)
    return;
  run("COMMIT TRANSACTION");
  archive_.storeRunUnderWay = false;
  open_ = false;
}

void StoreTransaction::commitAndBegin() {
  run("COMMIT TRANSACTION");
  run("BEGIN TRANSACTION");
  messagesSinceCommit_ = 0;
  sinceCommit_.start();
}

void StoreTransaction::run(const char* statement) {
  const archive::ExecResult result = archive_.exec(QLatin1String(statement));
  if (!result.ok())
    storeLog_.write(QStringLiteral("SQL error: ") + result.error + QLatin1Char('\n'));
}

}  // namespace quillery::ingest
