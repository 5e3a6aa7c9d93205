#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

#include "ingest/StoreRequest.h"
#include "ingest/StoreRunCounters.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
struct OpenPanel;
}  // namespace quillery::platform

namespace quillery::ingest {

class StoreRun;

// Everything before a store run starts: the store-date panel with the newest stored day, the
// choice of mbox files (mbox mode), the checks of the chosen sources and the user's
// confirmation. It ends in a StoreRequest that a StoreRun carries out. It never starts a run
// itself and does nothing while one is under way; mbox mode, once chosen, lasts until a run
// ends (the run's toolEnded signal).
class StorePreparation : public QObject {
  Q_OBJECT

 public:
  // The run is asked whether it is under way; counters are reset for a new run by
  // prepareRun.
  StorePreparation(archive::Archive& archive, platform::Dialogs& dialogs,
                   StoreRunCounters& counters, const StoreRun& run, QObject* parent = nullptr);

  // Prepares the store-date panel for a run over the mail client's folders: when the archive
  // at dbPath holds messages, returns (and signals) the newest stored day as the begin date.
  // An archive that fails to open returns nothing and leaves the panel closed; a failing
  // query is reported on standard error and leaves the begin date as it is. While a run is
  // under way nothing happens: reopening the archive would roll back what it stored.
  std::optional<StoreDate> setStoreDate(const QString& dbPath);
  // Asks for mbox files; on a choice they become the run's sources (useMboxFiles) and the
  // date panel is shown. Returns false when the user cancelled or a run is under way
  // (nothing changes).
  bool openMbox();
  // The same for one folder of mail (a Maildir, a Thunderbird profile, a folder of .eml
  // files, ...), which the parser tool reads as it reads mbox files.
  bool openMailFolder();
  // Takes these files as the mbox files of the next run and switches to mbox mode.
  void useMboxFiles(const QStringList& files);
  // Closes the date panel; mbox mode stays until a run ends.
  void cancelStore();

  // The panel's Store action up to the start of the run. Does nothing and returns nothing
  // while a run is under way (a message has been read or the tool runs). Otherwise resets the
  // run's counts, closes the date panel, checks that mailboxes or accounts are chosen (not
  // in mbox mode; a critical alert names what is missing) and asks for confirmation; returns
  // the request when the user confirmed, nothing after a failed check or "Cancel".
  std::optional<StoreRequest> prepareRun(const QString& dbPath, const StoreSwitches& switches,
                                         const StoreDateRange& dates, const StoreSources& sources);

  bool mboxMode() const { return mboxMode_; }
  // The chosen mbox files (the source table's list in mbox mode).
  const QStringList& sourceList() const { return sourceList_; }

 Q_SIGNALS:
  void storeDatePanelShown();
  void storeDatePanelClosed();
  void beginStoreDateSelected(const QString& year, const QString& month, const QString& day);

 private:
  bool chooseMboxSources(const platform::OpenPanel& panel);
  bool checkSources(const StoreSwitches& switches, const StoreSources& sources);
  bool confirm(const QString& dbPath, const StoreSwitches& switches);

  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  StoreRunCounters& counters_;
  const StoreRun& run_;
  bool mboxMode_ = false;
  QStringList sourceList_;
};

}  // namespace quillery::ingest
