// quillery-cli: the archive's features without the window, for scripts and scheduled jobs.
// It drives the same classes as the window with console ports; each command lives in its
// own file and is listed in Commands.cpp.
#include <QCoreApplication>

#include "cli/CliCommand.h"
#include "cli/Console.h"

namespace quillery::cli {
namespace {

QString helpText() {
  QString text = QStringLiteral("Usage:\n");
  for (const CliCommand& command : cliCommands())
    text += command.synopsis();
  text += QStringLiteral(
      "  quillery-cli --help | --version\n"
      "\n"
      "Works on a Quillery archive without the window, for scripts and scheduled jobs,\n"
      "through the window's own classes.\n"
      "\n"
      "  --archive PATH        The archive file, for every command. Default: the window's\n"
      "                        saved archive path, else $HOME/Desktop/myemaildb. Created\n"
      "                        when missing.\n"
      "\n");
  for (const CliCommand& command : cliCommands())
    text += command.help() + QLatin1Char('\n');
  text += QStringLiteral(
      "Output: results on standard output; alerts on standard error as \"Title: message\";\n"
      "a progress line on standard error when it is a terminal.\n"
      "\n"
      "Exit status: 0 when the command did its work; 1 when the archive could not be opened,\n"
      "the work could not start or an alert reported an error; 2 when the command line is\n"
      "wrong.\n");
  return text;
}

int runCommand(const QStringList& arguments) {
  if (arguments.isEmpty())
    return usageError(QStringLiteral("no command given"));
  const QString& name = arguments.first();
  if (name == QLatin1String("--help") || name == QLatin1String("-h") ||
      name == QLatin1String("help")) {
    print(stdout, helpText());
    return kOk;
  }
  if (name == QLatin1String("--version")) {
    print(stdout, QStringLiteral("quillery-cli %1\n").arg(QCoreApplication::applicationVersion()));
    return kOk;
  }
  for (const CliCommand& command : cliCommands()) {
    if (name == QLatin1String(command.name))
      return command.run(arguments.mid(1));
  }
  return usageError(QStringLiteral("unknown command '%1'").arg(name));
}

}  // namespace
}  // namespace quillery::cli

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  // The window's preferences live under these names; the archive path default is read there.
  QCoreApplication::setOrganizationName(QStringLiteral("Quillery"));
  QCoreApplication::setApplicationName(QStringLiteral("Quillery"));
  QCoreApplication::setApplicationVersion(QStringLiteral(QUILLERY_VERSION));
  return quillery::cli::runCommand(app.arguments().mid(1));
}
