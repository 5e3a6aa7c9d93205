#pragma once

#include <QObject>
#include <QString>

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform
namespace quillery::search {
class ResultList;
}

namespace quillery::maintenance {

// Folds a second archive file (the merge file) into the archive, on the shared connection
// with the merge file attached as "mergee", in one transaction. Messages the archive already
// holds (same date, To and From) are not copied again; each copied message gets a new id,
// its tags, source and attachments follow it, and the copied messages become the result
// list, their new ids the archive's idList. The window follows the list through its signals
// and the list window through the signals below.
class DatabaseMerge : public QObject {
  Q_OBJECT

 public:
  DatabaseMerge(archive::Archive& archive, search::ResultList& list, platform::Dialogs& dialogs,
                platform::Progress& progress, QObject* parent = nullptr);

  // The merge action: asks for the merge file ("Choose Database File to Merge") and merges
  // it (mergeFile). Cancelling the panel does nothing.
  bool mergeDB(const QString& dbPath);
  // Merges the file at mergePath into the archive at dbPath. Nothing happens while another
  // operation's id list is pending (the archive's idCount is not 0) or a store run is under
  // way. The same file as the archive is refused with its critical alert before anything is
  // done; the user is asked ("Merge Database Files") and anything but "Merge" ends it.
  // Both files are then validated with openDB (which gives the merge file any missing table);
  // if either fails, its alert has been shown, openFailed is cleared and the connection
  // closed. A merge file that cannot be attached shows "Merge Failed" or "SQL Error: %s".
  // Per-message failures show their alert and the merge goes on; what was written stays. The
  // end shows "Done Merging Email" with the counts of messages processed and duplicates.
  // The connection stays open on the archive. Returns true when the merge ran to its end.
  bool mergeFile(const QString& dbPath, const QString& mergePath);

  // The merge-file messages found already present in the run under way.
  int mergeDuplicates = 0;
  // Whether the merge file has any sources (origemail rows).
  bool mergeHasSources = false;

 Q_SIGNALS:
  void storePanelClosed();
  // The list window is brought to the front.
  void storePanelShown();
  void storePanelTitleChanged(const QString& title);
  void messageViewCleared();

 private:
  bool confirm(const QString& dbPath, const QString& mergePath);
  void clearVisibleState(const QString& dbPath);
  bool openBoth(const QString& dbPath, const QString& mergePath);
  bool attach(const QString& mergePath);
  bool readMergeIds();
  void endEmptyList();
  void copyMessages();
  void finish();

  archive::Archive& archive_;
  search::ResultList& list_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
};

}  // namespace quillery::maintenance
