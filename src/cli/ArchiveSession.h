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
  // Lists the messages with these ids, in id order, as a search would; answers the ids that
  // are not in the archive. A failing statement has shown its alert.
  QList<int> listIds(const QList<int>& ids);
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
