#include "cli/DeleteCommand.h"

#include <unistd.h>

#include <QTextStream>
#include <cstdio>

#include "cli/ArchiveSession.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "search/Deletion.h"

namespace quillery::cli {
namespace {

// The console's dialogs, except that a question with a choice is answered by --yes, else
// asked on the terminal, else refused: nothing is deleted unasked. A plain notice is left to
// the command, which prints its result on standard output.
class ConfirmingDialogs : public ConsoleDialogs {
 public:
  explicit ConfirmingDialogs(bool yes) : yes_(yes) {}

  int showAlert(const platform::Alert& alert) override {
    if (alert.buttons.size() < 2 && alert.style == platform::AlertStyle::Informational)
      return 0;
    if (alert.buttons.size() < 2)
      return ConsoleDialogs::showAlert(alert);
    if (yes_)
      return 0;
    if (!::isatty(STDIN_FILENO)) {
      refused = true;
      return int(alert.buttons.size()) - 1;
    }
    print(stderr, alert.title + QStringLiteral(": ") + alert.message + QStringLiteral(" [y/N] "));
    const QString answer = QTextStream(stdin).readLine().trimmed().toLower();
    return answer == QLatin1String("y") || answer == QLatin1String("yes") ? 0 : 1;
  }

  bool refused = false;

 private:
  bool yes_;
};

}  // namespace

QString DeleteCommand::synopsis() {
  return QStringLiteral(
      "  quillery-cli delete [--archive PATH] ID... [--attachments-only] [--yes]\n");
}

QString DeleteCommand::help() {
  return QStringLiteral(
      "delete: delete messages ID... from the archive (their tags stay), in one transaction;\n"
      "then print the archive's count.\n"
      "  --attachments-only    Delete only their attachments, except HTML ones; the\n"
      "                        messages keep their attachment count and list.\n"
      "  --yes                 Do not ask. Without it the question is asked on the\n"
      "                        terminal, and without a terminal nothing is deleted.\n");
}

int DeleteCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  QList<int> ids;
  bool attachmentsOnly = false;
  bool yes = false;
  QString argument;
  while (line.next(argument)) {
    if (line.takeArchive(argument)) {
    } else if (argument == QLatin1String("--attachments-only")) {
      attachmentsOnly = true;
    } else if (argument == QLatin1String("--yes")) {
      yes = true;
    } else if (!takeMessageId(argument, ids)) {
      line.fail(QStringLiteral("unknown option '%1' for delete").arg(argument));
    }
  }
  if (!line.failed() && ids.isEmpty())
    line.fail(QStringLiteral("delete needs at least one message id"));
  if (line.failed())
    return usageError(line.error());

  ArchiveSession session;
  if (!session.openWithMessages(line.archivePath(), ids, "deleted"))
    return kFailed;
  ConfirmingDialogs dialogs(yes);
  search::Deletion deletion(session.archive, session.list, dialogs, session.progress);
  const bool done = attachmentsOnly ? deletion.deleteAttachments(session.allRows())
                                    : deletion.deleteSelected(session.allRows());
  if (dialogs.refused)
    print(stderr, QStringLiteral("quillery-cli: nothing was deleted; give --yes to delete "
                                 "without a terminal to ask on\n"));
  if (!done || !dialogs.lastCriticalMessage().isEmpty())
    return kFailed;
  print(stdout, attachmentsOnly ? QStringLiteral("The attachments have been deleted from the "
                                                 "database for the selected email in the list.\n")
                                : session.list.dbCountText() + QLatin1Char('\n'));
  return kOk;
}

}  // namespace quillery::cli
