#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace quillery::platform {
class Dialogs;
}

namespace quillery::ingest {

// The mail client's accounts and mailboxes that the user chooses from before a store run.
// sourceList holds the names the source table shows, one per row; each listing refills it and
// answers which rows to select, those whose text is in the list the user chose earlier.
// Entries chosen earlier that are no longer there are simply not selected.
class MailSources {
 public:
  // homeDir is the user's home folder as read at start; findmailPath the listing tool that
  // ships beside the application.
  MailSources(platform::Dialogs& dialogs, QString homeDir, QString findmailPath);

  // The mail client's folder: homeDir + "/Library/Mail".
  QString mailFolder() const;

  // Fills sourceList with the account folders of the mail folder, in the order the file
  // system lists them: every directory whose name does not begin with "Bundles", "Mailbox"
  // or "Signatu" (names shorter than seven characters are always kept). No mail folder gives
  // an empty list and no report. Returns the rows whose names are in accountList, ascending.
  QList<int> listMailAccounts(const QStringList& accountList);

  // Lists the accounts, then runs findmail through "/usr/bin/nice" with messageFile, every
  // account name and the word "Mailboxes" (HOME set to homeDir, so the tool reads the same
  // mail folder), waits for it and fills sourceList with the lines
  // of messageFile, each with its line end (a line that is not UTF-8 is skipped; a line over
  // 2,999 bytes comes in pieces). The file is left on disk. When the tool wrote no file,
  // sourceList stays empty and the critical alert "Couldn't open <path>" is shown. Returns
  // the rows whose texts are in mailboxList, ascending. Blocks until the tool has exited.
  QList<int> listMailboxes(const QStringList& mailboxList, const QString& messageFile);

  // The entries of the given rows in ascending row order; rows out of range are passed over.
  QStringList entriesAt(QList<int> rows) const;

  QStringList sourceList;

 private:
  QList<int> rowsIn(const QStringList& chosen) const;
  void runFindmail(const QString& messageFile) const;

  platform::Dialogs& dialogs_;
  QString homeDir_;
  QString findmailPath_;
};

}  // namespace quillery::ingest
