#include "cli/BackupCommand.h"
#include "cli/CliCommand.h"
#include "cli/CompactCommand.h"
#include "cli/ConvertCommand.h"
#include "cli/DeleteCommand.h"
#include "cli/ExportCommand.h"
#include "cli/ListCommand.h"
#include "cli/MergeCommand.h"
#include "cli/RestoreCommand.h"
#include "cli/SearchCommand.h"
#include "cli/ShowCommand.h"
#include "cli/StoreCommand.h"
#include "cli/TagCommand.h"

namespace quillery::cli {

const std::vector<CliCommand>& cliCommands() {
  static const std::vector<CliCommand> kCommands{
      {"store", &StoreCommand::synopsis, &StoreCommand::help, &StoreCommand::run},
      {"list", &ListCommand::synopsis, &ListCommand::help, &ListCommand::run},
      {"search", &SearchCommand::synopsis, &SearchCommand::help, &SearchCommand::run},
      {"show", &ShowCommand::synopsis, &ShowCommand::help, &ShowCommand::run},
      {"tag", &TagCommand::synopsis, &TagCommand::help, &TagCommand::run},
      {"delete", &DeleteCommand::synopsis, &DeleteCommand::help, &DeleteCommand::run},
      {"backup", &BackupCommand::synopsis, &BackupCommand::help, &BackupCommand::run},
      {"restore", &RestoreCommand::synopsis, &RestoreCommand::help, &RestoreCommand::run},
      {"compact", &CompactCommand::synopsis, &CompactCommand::help, &CompactCommand::run},
      {"convert", &ConvertCommand::synopsis, &ConvertCommand::help, &ConvertCommand::run},
      {"merge", &MergeCommand::synopsis, &MergeCommand::help, &MergeCommand::run},
      {"export", &ExportCommand::synopsis, &ExportCommand::help, &ExportCommand::run},
  };
  return kCommands;
}

}  // namespace quillery::cli
