#pragma once

#include <QList>

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform

namespace quillery::search {

class ResultList;

// Removes listed messages, or their attachments, from the archive file. Each action asks
// first ("Cancel" changes nothing), runs its statements in one transaction on the connection
// the list's retrieval left open, and then brings the list and the counts up to date. A
// statement that fails shows "SQL error: %s" and ends the action at once: no COMMIT is sent,
// the transaction stays open (so nothing of the action is in the file yet), the progress
// panel stays and the list is not changed. A message's tags row is never deleted: tags
// outlive their message. While a store run holds the connection nothing is deleted.
class Deletion {
 public:
  Deletion(archive::Archive& archive, ResultList& list, platform::Dialogs& dialogs,
           platform::Progress& progress);

  // Deletes the email, attachments and origemail rows of the messages shown at these table
  // rows, lowest first, and removes the rows from the list. Returns true when done.
  bool deleteSelected(const QList<int>& selectedDisplayRows);
  // The same for every message of the list, in display order; the list ends empty.
  bool deleteAll();
  // Deletes the attachments of the selected messages except those whose name ends in html
  // (in any case). numAttach and the names listed in the message text stay as they were.
  bool deleteAttachments(const QList<int>& selectedDisplayRows);

 private:
  enum class What { Messages, Attachments };

  // The transaction and the loop shared by the three actions, closing the progress panel when
  // they succeed; false when the archive is busy or cannot be opened, or a statement failed
  // (the transaction is then left open and the panel shown).
  bool run(What what, const QList<int>& displayRows);
  bool deleteOne(What what, int id);

  archive::Archive& archive_;
  ResultList& list_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
};

}  // namespace quillery::search
