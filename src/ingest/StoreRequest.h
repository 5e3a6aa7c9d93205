#pragma once

#include <QString>
#include <QStringList>

namespace quillery::ingest {

// The preference switches that shape a store run, each 0 or 1 in the tool's arguments.
struct StoreSwitches {
  bool allmbState = false;
  bool attachState = false;
  bool htmlState = false;
  bool trashState = false;
  bool origState = false;
  bool mailboxesState = false;
};

// One side of the store-date panel: the selected titles of its month, day and year pop-ups,
// "All" or the two-digit month and day and the four-digit year.
struct StoreDate {
  QString month = QStringLiteral("All");
  QString day = QStringLiteral("All");
  QString year = QStringLiteral("All");
};

struct StoreDateRange {
  StoreDate begin;
  StoreDate end;
};

// The chosen accounts and mailboxes of the preferences; the mbox files of an mbox run are
// chosen on their own (StorePreparation::openMbox).
struct StoreSources {
  QStringList accountList;
  QStringList mailboxList;
};

// Everything a store run is asked to do, as its preparation has checked and the user has
// confirmed it: which archive, which switches, which dates, and what to read: the mbox files
// in mbox mode, else the chosen mailboxes or accounts.
struct StoreRequest {
  QString dbPath;
  StoreSwitches switches;
  StoreDateRange dates;
  bool mboxMode = false;
  QStringList mboxFiles;
  StoreSources sources;

  // The parser tool's arguments after its own path: the run log beside the archive, the six
  // switches and mbox mode as 0 or 1 (the mailboxes switch 0 in mbox mode), the two dates,
  // then the mbox files, else the mailboxes, else the accounts and the word "Mailboxes".
  QStringList toolArguments() const;

  // "%@-%@-%@ 00:00:00" from the pop-up titles, "All" read as 0000-00-00 or 9999-99-99.
  static QString beginDateText(const StoreDate& date);
  static QString endDateText(const StoreDate& date);
};

}  // namespace quillery::ingest
