#pragma once

#include <QString>

#include "archive/Records.h"

namespace quillery::archive {
class Archive;
struct ExecResult;
}  // namespace quillery::archive
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform
namespace quillery::search {
class ResultList;
}

namespace quillery::maintenance {

// Copies one message of the merge file (attached as "mergee") into the archive, inside the
// merge's transaction. A message is already in the archive when one there has the same date,
// To and From texts. Such a duplicate is counted, and gets the merge file's source when it has
// none, only when the merge file keeps sources; otherwise it is skipped uncounted. Its tags and
// attachments are never merged. A new message gets a new id; its tags, source and attachments
// follow under that id and it is added to the result list (its date with "*" when the merge
// file has a tags row for it). Texts are written with their double quotes doubled and their
// backslashes as they are, so the copy holds the same characters as the merge file. A failing
// statement closes the progress panel, shows its critical alert and skips the rest of the
// message (a failing attachment only that attachment); nothing written before is undone.
class MergeMessageCopy {
 public:
  MergeMessageCopy(archive::Archive& archive, search::ResultList& list, platform::Dialogs& dialogs,
                   platform::Progress& progress);

  enum class Outcome { Copied, Duplicate, Skipped };
  // Copies the message whose id text is mergeId.
  Outcome copy(const QString& mergeId, bool mergeHasSources);

 private:
  bool readMessage(const QString& mergeId);
  // The id of the archive's message with the same date, To and From (0: none), or -1 when
  // the test failed, which has been reported.
  int findDuplicate();
  Outcome mergeDuplicate(int mergeId, int existingId);
  bool readTags(int mergeId);
  Outcome copyNew(int mergeId, bool hasTags, bool mergeHasSources);
  bool insertEmail();
  bool insertTags(int newId);
  // Copies the merge file's source of mergeId to targetId when it is longer than 2
  // characters; false when the insert failed (reported).
  bool copySource(int mergeId, int targetId);
  bool readAttachments(int mergeId);
  void insertAttachments(int newId);
  // Runs a statement that writes; a failure closes the progress panel and shows "SQL error:
  // %s". Returns whether it succeeded.
  bool write(const QString& statement);
  void fail(const archive::ExecResult& result);

  archive::Archive& archive_;
  search::ResultList& list_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  archive::EmailRecord record_;
  archive::TagRecord tags_;
};

}  // namespace quillery::maintenance
