#include "cli/BackupCommand.h"
#include "cli/CliCommand.h"
#include "cli/CompactCommand.h"
#include "cli/ConvertCommand.h"
#include "cli/ListCommand.h"
#include "cli/MergeCommand.h"
#include "cli/RestoreCommand.h"
#include "cli/StoreCommand.h"

namespace quillery::cli {

const std::vector<CliCommand>& cliCommands() {
  static const std::vector<CliCommand> kCommands{
      {"store", &StoreCommand::synopsis, &StoreCommand::help, &StoreCommand::run},
      {"list", &ListCommand::synopsis, &ListCommand::help, &ListCommand::run},
      {"backup", &BackupCommand::synopsis, &BackupCommand::help, &BackupCommand::run},
      {"restore", &RestoreCommand::synopsis, &RestoreCommand::help, &RestoreCommand::run},
      {"compact", &CompactCommand::synopsis, &CompactCommand::help, &CompactCommand::run},
      {"convert", &ConvertCommand::synopsis, &ConvertCommand::help, &ConvertCommand::run},
      {"merge", &MergeCommand::synopsis, &MergeCommand::help, &MergeCommand::run},
  };
  return kCommands;
}

}  // namespace quillery::cli
