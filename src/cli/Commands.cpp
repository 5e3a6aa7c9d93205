#include "cli/CliCommand.h"
#include "cli/ListCommand.h"
#include "cli/StoreCommand.h"

namespace quillery::cli {

const std::vector<CliCommand>& cliCommands() {
  static const std::vector<CliCommand> kCommands{
      {"store", &StoreCommand::synopsis, &StoreCommand::help, &StoreCommand::run},
      {"list", &ListCommand::synopsis, &ListCommand::help, &ListCommand::run},
  };
  return kCommands;
}

}  // namespace quillery::cli
