#pragma once

#include <QObject>
#include <QString>

#include "prefs/StoredPreferences.h"

namespace quillery::ingest {
class MailSources;
}
namespace quillery::platform {
class Dialogs;
class Settings;
}  // namespace quillery::platform
namespace quillery::search {
class CategoryList;
}

namespace quillery::app {

class SetupPanel;

// The preferences at work: reading them at start and on cancel into the run-time state and
// the setup panel, saving them from the panel, the choice between accounts and mailboxes, and
// the two ways of naming the archive file. The run-time values are `values`, the archive path
// among them; the setup panel's dbPath field shows it, and what the user types there is the
// archive path at once, as every action that opens the archive reads it. Windows outside the
// setup panel follow the signals.
class Preferences : public QObject {
  Q_OBJECT

 public:
  Preferences(SetupPanel& panel, prefs::StoredPreferences& values, ingest::MailSources& sources,
              search::CategoryList& categories, platform::Settings& settings,
              platform::Dialogs& dialogs, QString homeDir, QObject* parent = nullptr);

  // Reads the stored preferences into the run-time state and the panel. On a first run (no
  // archive path stored, or an empty one) the path becomes homeDir + "/Desktop/myemaildb",
  // every account is selected, attachments, HTML and sources are switched on, the font is the
  // default, and all is saved at once.
  void getPrefs();
  // Takes the panel into the run-time state and stores all twelve preferences, then closes
  // the panel. Reads the archive's categories first, so the archive file named in dbPath is
  // opened (its own alerts appear when it is unusable). An empty path becomes the default.
  void savePreferences();
  // Fills the source table by the mode, selects the entries chosen before, sets the five
  // check boxes from the switches and brings the panel to the front.
  void doPrefPanel();
  // Closes the panel and reads the stored preferences again, discarding the panel's edits.
  void cancelPrefs();
  // The mode pop-up's action: switches between choosing accounts and mailboxes and refills
  // the table. The other mode's chosen list is kept.
  void selectMailboxes();

  // Ask for a new or an existing archive file; on a choice the path is taken and saved.
  // Nothing is opened or created here.
  void newDbPath();
  void openDbPath();
  // Takes this path as the archive path and saves the preferences.
  void setDbPath(const QString& path);
  const QString& dbPath() const { return values_.dbPath; }
  QString defaultDbPath() const { return prefs::StoredPreferences::defaultDbPath(homeDir_); }

  // While a store run uses the archive's ".tmp" file, the mailbox listing (which writes that
  // file) is not run: the table shows the mailboxes chosen before, all selected.
  void setMailboxListingBlocked(bool blocked) { listingBlocked_ = blocked; }

 Q_SIGNALS:
  // The category list was read: the two category pop-ups take its entries.
  void categoriesRead();
  // The source switch may have changed: the view-source button and the source-saving menu
  // items follow it.
  void switchesApplied();
  // The list font is to be applied to the result list again.
  void listFontApplied();

 private:
  void firstRun();
  void showModeTitle();
  void refillSources();
  void readCategories();
  void showDbPath(const QString& path);

  SetupPanel& panel_;
  prefs::StoredPreferences& values_;
  ingest::MailSources& sources_;
  search::CategoryList& categories_;
  platform::Settings& settings_;
  platform::Dialogs& dialogs_;
  QString homeDir_;
  bool listingBlocked_ = false;
};

}  // namespace quillery::app
