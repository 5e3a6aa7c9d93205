#include "cli/CliCommand.h"
#include "cli/DeleteCommand.h"
#include "cli/ListCommand.h"
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
  };
  return kCommands;
}

}  // namespace quillery::cli
