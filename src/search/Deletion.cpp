#include "search/Deletion.h"

#include <cstdio>

#include "archive/Archive.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"
#include "search/SqlErrorReport.h"

namespace quillery::search {
namespace {

using RunControls = platform::Progress::RunControls;

// Asks with "Delete" (the default) and "Cancel"; true for "Delete".
bool confirmed(platform::Dialogs& dialogs, const char* title, const char* message) {
  const platform::Alert alert{platform::AlertStyle::Informational,
                              QString::fromLatin1(title),
                              QString::fromLatin1(message),
                              {QStringLiteral("Delete"), QStringLiteral("Cancel")}};
  return dialogs.showAlert(alert) == 0;
}

}  // namespace

Deletion::Deletion(archive::Archive& archive, ResultList& list, platform::Dialogs& dialogs,
                   platform::Progress& progress)
    : archive_(archive), list_(list), dialogs_(dialogs), progress_(progress) {}

bool Deletion::deleteSelected(const QList<int>& selectedDisplayRows) {
  if (!confirmed(dialogs_, "Delete this email from database",
                 "Do you want to delete the selected email from the database?"))
    return false;
  if (!run(What::Messages, selectedDisplayRows))
    return false;
  list_.deleteFromList(selectedDisplayRows);
  return true;
}

bool Deletion::deleteAll() {
  if (!confirmed(dialogs_, "Delete all email in list from database",
                 "Do you want to delete all of the email in this list from the database?"))
    return false;
  QList<int> everyRow;
  for (int row = 0; row < list_.emailRows.size(); ++row)
    everyRow.append(row);
  if (!run(What::Messages, everyRow))
    return false;
  list_.removeAll();
  return true;
}

bool Deletion::deleteAttachments(const QList<int>& selectedDisplayRows) {
  if (!confirmed(dialogs_, "Delete Attachments",
                 "Do you want to delete the attachments from the database for the selected "
                 "email in this list?"))
    return false;
  if (!run(What::Attachments, selectedDisplayRows))
    return false;
  dialogs_.inform(QString(),
                  QStringLiteral("The attachments have been deleted from the database for the "
                                 "selected email in the list."));
  return true;
}

bool Deletion::run(What what, const QList<int>& displayRows) {
  // A store run's transaction holds the connection: this action's COMMIT would end it.
  if (archive_.storeRunUnderWay || !list_.reopenListedArchive())
    return false;
  progress_.showCount(QStringLiteral("0"));
  progress_.setRunControlsVisible(true, RunControls::Count);
  progress_.open(what == What::Messages ? QStringLiteral("Deleting from database...")
                                        : QStringLiteral("Deleting attachments..."));
  reportOnStderr(archive_.exec(QStringLiteral("BEGIN TRANSACTION")));
  // The ids first: the rows are not touched until the action has succeeded.
  QList<int> ids;
  ids.reserve(displayRows.size());
  for (const int row : displayRows) {
    if (row >= 0 && row < list_.emailRows.size())
      ids.append(list_.rowAt(row).emailID());
  }
  int done = 0;
  for (const int id : std::as_const(ids)) {
    if (!deleteOne(what, id))
      return false;
    progress_.doProgressCount(++done, 10);
  }
  reportOnStderr(archive_.exec(QStringLiteral("COMMIT TRANSACTION")));
  progress_.close();
  progress_.setRunControlsVisible(false, RunControls::Count);
  return true;
}

bool Deletion::deleteOne(What what, int id) {
  const auto stop = [this](const archive::ExecResult& failed) {
    dialogs_.critical(QString(), QStringLiteral("SQL error: ") + failed.error);
    return false;
  };
  if (what == What::Messages) {
    return archive_.deleteMessageRows(
        id,
        {archive::MessageTable::Email, archive::MessageTable::Attachments,
         archive::MessageTable::Origemail},
        stop);
  }
  const archive::ExecResult result =
      archive_.exec(QStringLiteral("DELETE FROM attachments WHERE id=%1 AND filename_fld NOT LIKE "
                                   "'%html'")
                        .arg(id));
  return result.ok() || stop(result);
}

}  // namespace quillery::search
