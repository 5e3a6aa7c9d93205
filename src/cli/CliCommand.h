#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace quillery::cli {

// One command of quillery-cli: its name, its lines of the usage synopsis, its section of the
// --help text, and what runs it. run gets the arguments after the command's name and returns
// the exit code (see Console.h).
struct CliCommand {
  const char* name;
  QString (*synopsis)();
  QString (*help)();
  int (*run)(const QStringList& arguments);
};

// Every command, in the order --help lists them.
const std::vector<CliCommand>& cliCommands();

}  // namespace quillery::cli
