#pragma once

#include <QString>
#include <QStringList>

#include "ingest/StoreRun.h"

namespace quillery::cli {

// The command line of quillery-cli, parsed without side effects.
struct CliOptions {
  enum class Command { Help, Version, Store, List };
  enum class SourceKind { None, Mbox, Accounts, Mailboxes };

  Command command = Command::Help;
  QString archivePath;  // empty: the saved preference, else the default path
  SourceKind sourceKind = SourceKind::None;
  QStringList sources;  // mbox files, account names or mailbox lines
  ingest::StoreSwitches switches{false, true, true, false, true, false};
  ingest::StoreDateRange dates;
  bool progressLines = false;
  QString error;  // set when the command line is wrong

  // Parses the arguments after the program name. On a mistake, error says what is wrong
  // and the other fields are unspecified.
  static CliOptions parse(const QStringList& arguments);
  // The complete --help text.
  static QString helpText();
};

}  // namespace quillery::cli
