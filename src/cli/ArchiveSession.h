#pragma once

#include <QList>
#include <QString>

#include "archive/Archive.h"
#include "cli/ConsoleDialogs.h"
#include "cli/ConsoleProgress.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"

namespace quillery::cli {

// The shared objects of one command on an archive: the console ports, the archive connection
// and the result list, as the window holds them.
class ArchiveSession {
 public:
  ArchiveSession();

  // Opens the archive (openDB, creating it when missing); false after its alert.
  bool open(const QString& path);
  // Opens the archive and lists the messages with these ids, in id order, as a search
  // would. False when the archive did not open, the statement failed (its alert has been
  // shown) or an id is not in the archive, which is said on standard error with
  // "nothing was <undone>".
  bool openWithMessages(const QString& path, const QList<int>& ids, const char* undone);
  // Every display row of the list.
  QList<int> allRows() const;
  // Whether an alert ended an action (a critical alert was shown).
  bool failed() const { return !dialogs.lastCriticalMessage().isEmpty(); }

  // The list line of a row: id, date, from, to, subject and mailbox separated by tabs.
  static QString listLine(const search::Emailrow& row);

  QString path;
  ConsoleDialogs dialogs;
  ConsoleProgress progress;
  platform::QtFiles files;
  archive::Archive archive;
  search::ResultList list;
};

// Reads the message ids among a command's arguments: positive whole numbers.
bool takeMessageId(const QString& argument, QList<int>& ids);

}  // namespace quillery::cli
