#include "cli/ShowCommand.h"

#include <QTemporaryDir>

#include "archive/RowCallbacks.h"
#include "cli/ArchiveSession.h"
#include "cli/CommandLine.h"
#include "cli/Console.h"
#include "platform/Pasteboard.h"
#include "platform/Workspace.h"
#include "search/AttachmentLink.h"
#include "search/AttachmentOpener.h"
#include "search/MessageView.h"

namespace quillery::cli {
namespace {

// The desktop is not used by this command: nothing is launched or opened.
class NoDesktop : public platform::Workspace, public platform::Pasteboard {
 public:
  bool openFile(const QString&) override { return false; }
  bool openUrl(const QUrl&) override { return false; }
  void setText(const QString&) override {}
  QString text() const override { return {}; }
};

struct Request {
  int id = 0;
  bool source = false;
  int attachment = -1;
  QString output;
};

// Writes attachment number position of message id to output, replacing a file there.
int saveAttachment(ArchiveSession& session, const search::MessageView& view, int position,
                   const QString& output) {
  session.archive.columnValues.clear();
  session.archive.exec(QStringLiteral("SELECT filename_fld FROM attachments WHERE id=%1")
                           .arg(view.attachmentIDForView),
                       archive::columnListCallback, &session.archive);
  if (position >= session.archive.columnValues.size()) {
    print(stderr, QStringLiteral("quillery-cli: the message has no attachment %1\n").arg(position));
    return kFailed;
  }
  QTemporaryDir temp;
  const QString link = search::AttachmentLink::pathFor(
      temp.path(), position,
      QString(session.archive.columnValues.at(position)).remove(QLatin1Char('\n')));
  NoDesktop desktop;
  search::AttachmentOpener opener(session.archive, session.dialogs, session.progress, session.files,
                                  desktop, qEnvironmentVariable("HOME"));
  if (!opener.fetchAttachment(link, view.attachmentIDForView))
    return kFailed;
  if ((session.files.exists(output) && !session.files.remove(output)) ||
      !session.files.copy(link, output)) {
    print(stderr, QStringLiteral("quillery-cli: cannot write %1\n").arg(output));
    return kFailed;
  }
  return kOk;
}

}  // namespace

QString ShowCommand::synopsis() {
  return QStringLiteral(
      "  quillery-cli show [--archive PATH] ID [--source | --attachment N --output FILE]\n");
}

QString ShowCommand::help() {
  return QStringLiteral(
      "show: print message ID as the message view shows it: ID, DATE, FROM, TO, SUBJECT and\n"
      "MAILBOX lines, a blank line and the text, whose attachment list after \"ATTACHMENTS:\"\n"
      "names the attachments that are in the archive.\n"
      "  --source              Print the message's raw source instead.\n"
      "  --attachment N --output FILE\n"
      "                        Write attachment N (0 for the first, in the order shown)\n"
      "                        decoded to FILE, replacing it.\n");
}

int ShowCommand::run(const QStringList& arguments) {
  CommandLine line(arguments);
  Request request;
  QList<int> ids;
  QString argument;
  while (line.next(argument)) {
    if (line.takeArchive(argument)) {
    } else if (argument == QLatin1String("--source")) {
      request.source = true;
    } else if (argument == QLatin1String("--attachment")) {
      bool ok = false;
      request.attachment = line.value(argument).toInt(&ok);
      if (!line.failed() && (!ok || request.attachment < 0))
        line.fail(QStringLiteral("--attachment wants a number from 0"));
    } else if (argument == QLatin1String("--output")) {
      request.output = line.value(argument);
    } else if (!takeMessageId(argument, ids)) {
      line.fail(QStringLiteral("unknown option '%1' for show").arg(argument));
    }
  }
  if (!line.failed() && ids.size() != 1)
    line.fail(QStringLiteral("show needs one message id"));
  if (!line.failed() && (request.attachment >= 0) != !request.output.isEmpty())
    line.fail(QStringLiteral("--attachment and --output go together"));
  if (!line.failed() && request.source && request.attachment >= 0)
    line.fail(QStringLiteral("give only one of --source and --attachment"));
  if (line.failed())
    return usageError(line.error());
  request.id = ids.first();

  ArchiveSession session;
  if (!session.open(line.archivePath()))
    return kFailed;
  NoDesktop desktop;
  search::MessageView view(session.archive, session.list, session.dialogs, desktop, desktop);
  view.showMessage(request.id);
  if (view.rowText.isEmpty()) {
    print(stderr, QStringLiteral("quillery-cli: no message with id %1\n").arg(request.id));
    return kFailed;
  }
  if (request.attachment >= 0)
    return saveAttachment(session, view, request.attachment, request.output);
  if (!request.source) {
    print(stdout, view.shown().text + QLatin1Char('\n'));
    return kOk;
  }
  QString source;
  QObject::connect(&view, &search::MessageView::origShown,
                   [&source](const QString& text) { source = text; });
  session.archive.sqlResult.clear();
  view.viewOrigOf(request.id);
  if (source.isEmpty())
    return kFailed;
  print(stdout, source + QLatin1Char('\n'));
  return kOk;
}

}  // namespace quillery::cli
