#include "archive/maintenance/DatabaseMerge.h"

#include <sqlite3.h>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "archive/maintenance/ErrorLines.h"
#include "archive/maintenance/MergeMessageCopy.h"
#include "archive/maintenance/SameFile.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"
#include "text/LeadingInt.h"

namespace quillery::maintenance {

DatabaseMerge::DatabaseMerge(archive::Archive& archive, search::ResultList& list,
                             platform::Dialogs& dialogs, platform::Progress& progress,
                             QObject* parent)
    : QObject(parent), archive_(archive), list_(list), dialogs_(dialogs), progress_(progress) {}

bool DatabaseMerge::mergeDB(const QString& dbPath) {
  if (archive_.idCount != 0 || archive_.storeRunUnderWay)
    return false;
  const QStringList chosen = dialogs_.runOpenPanel(
      {QStringLiteral("Choose Database File to Merge"), QStringLiteral("Merge"), true, false});
  if (chosen.isEmpty())
    return false;
  return mergeFile(dbPath, chosen.last());
}

bool DatabaseMerge::mergeFile(const QString& dbPath, const QString& mergePath) {
  // Another operation's id list is still being worked through (an alert of it may be open).
  if (archive_.idCount != 0 || archive_.storeRunUnderWay)
    return false;
  mergeDuplicates = 0;
  if (isSameFile(dbPath, mergePath)) {
    dialogs_.critical(QString(), QStringLiteral("Merge file is the same as your database file.  "
                                                "Choose a different merge file."));
    return false;
  }
  if (!confirm(dbPath, mergePath))
    return false;
  clearVisibleState(dbPath);
  if (!openBoth(dbPath, mergePath))
    return false;
  progress_.open(QStringLiteral("Merging..."));
  if (!attach(mergePath))
    return false;
  if (!readMergeIds())
    return false;
  archive_.sqlResult.clear();
  const archive::ExecResult sources =
      archive_.exec(QStringLiteral("SELECT COUNT(id) FROM mergee.origemail"),
                    archive::singleValueCallback, &archive_);
  mergeHasSources = sources.ok() && text::leadingInt(archive_.sqlResult) != 0;
  reportOnStandardError(archive_.exec(QStringLiteral("BEGIN TRANSACTION")));
  copyMessages();
  finish();
  return true;
}

bool DatabaseMerge::confirm(const QString& dbPath, const QString& mergePath) {
  return dialogs_.showAlert(
             {platform::AlertStyle::Informational,
              QStringLiteral("Merge Database Files"),
              QStringLiteral("Do you want to merge:\n%1\nInto:\n%2?").arg(mergePath, dbPath),
              {QStringLiteral("Merge"), QStringLiteral("Cancel")}}) == 0;
}

void DatabaseMerge::clearVisibleState(const QString& dbPath) {
  Q_EMIT storePanelClosed();
  archive_.close();
  list_.startRows(dbPath);
  Q_EMIT messageViewCleared();
  Q_EMIT storePanelTitleChanged(QStringLiteral("merging database..."));
  Q_EMIT storePanelShown();
  progress_.showCount(QStringLiteral("0"));
  progress_.setRunControlsVisible(true, platform::Progress::RunControls::Count);
}

bool DatabaseMerge::openBoth(const QString& dbPath, const QString& mergePath) {
  archive_.openDB(mergePath, archive::Archive::IndexUse::Leave);
  if (!archive_.openFailed) {
    archive_.close();
    archive_.openDB(dbPath);
  }
  if (!archive_.openFailed)
    return true;
  // openDB's alert has said why.
  Q_EMIT storePanelClosed();
  endEmptyList();
  archive_.close();
  archive_.openFailed = false;
  return false;
}

bool DatabaseMerge::attach(const QString& mergePath) {
  QString quoted = mergePath;
  quoted.replace(QLatin1Char('"'), QLatin1String("\"\""));
  const archive::ExecResult attached =
      archive_.exec(QStringLiteral("ATTACH \"%1\" as mergee").arg(quoted));
  if (attached.ok())
    return true;
  progress_.close();
  endEmptyList();
  if (attached.code == SQLITE_NOTADB || attached.code == SQLITE_CORRUPT) {
    dialogs_.critical(QStringLiteral("Merge Failed"),
                      QStringLiteral("%1 is not a valid database file.").arg(mergePath));
  } else {
    dialogs_.critical(QString(), QStringLiteral("SQL Error: ") + attached.error);
  }
  return false;
}

bool DatabaseMerge::readMergeIds() {
  archive_.idList.clear();
  archive_.idCount = 0;
  const archive::ExecResult read =
      archive_.exec(QStringLiteral("SELECT mergee.email.id FROM mergee.email"),
                    archive::idListCallback, static_cast<archive::IdListState*>(&archive_));
  if (read.ok())
    return true;
  archive_.exec(QStringLiteral("DETACH mergee"));
  archive_.idList.clear();
  archive_.idCount = 0;
  progress_.close();
  endEmptyList();
  dialogs_.critical(QString(), QStringLiteral("SQL Error: ") + read.error);
  return false;
}

void DatabaseMerge::endEmptyList() {
  // The table was held reset for the rows to come; it shows the empty list without counts.
  list_.clear();
}

void DatabaseMerge::copyMessages() {
  // The merge file's ids are worked through from a copy: idList becomes the ids of the
  // listed messages again as they are copied. idCount keeps counting the merge file's
  // messages, which also keeps a second merge out while this one runs.
  const archive::IdList mergeIds = archive_.idList;
  archive_.idList.clear();
  MergeMessageCopy message(archive_, list_, dialogs_, progress_);
  int counter = 0;
  for (const QString& mergeId : mergeIds) {
    progress_.doProgressCount(++counter, 10);
    if (message.copy(mergeId, mergeHasSources) == MergeMessageCopy::Outcome::Duplicate)
      ++mergeDuplicates;
  }
}

void DatabaseMerge::finish() {
  reportOnStandardError(archive_.exec(QStringLiteral("COMMIT TRANSACTION")));
  list_.finishRows();
  archive_.exec(QStringLiteral("DETACH mergee"));
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::Count);
  progress_.close();
  Q_EMIT storePanelTitleChanged(QStringLiteral("done merging..."));
  dialogs_.inform(
      QStringLiteral("Done Merging Email"),
      QStringLiteral("Processed: %1\nDuplicates: %2\n").arg(archive_.idCount).arg(mergeDuplicates));
  archive_.idCount = 0;
  mergeDuplicates = 0;
}

}  // namespace quillery::maintenance
