#pragma once

#include <QString>
#include <QStringList>

#include "ingest/StoreRequest.h"

namespace quillery::cli {

class CommandLine;

// `quillery-cli store`: the window's own store run without the window. The confirmation is
// taken as given, the summary goes to standard output, Ctrl-C and SIGTERM cancel the run as
// the window's cancel button does.
class StoreCommand {
 public:
  enum class SourceKind { None, Mbox, Accounts, Mailboxes };

  // The command line of a store run.
  struct Options {
    QString archivePath;
    SourceKind sourceKind = SourceKind::None;
    QStringList sources;  // mbox files, account names or mailbox lines
    ingest::StoreSwitches switches{false, true, true, false, true, false};
    ingest::StoreDateRange dates;
    bool progressLines = false;
  };

  static QString synopsis();
  static QString help();
  static int run(const QStringList& arguments);
  // Reads the arguments after "store"; on a mistake the line's error says what is wrong.
  static Options parse(CommandLine& line);
};

}  // namespace quillery::cli
