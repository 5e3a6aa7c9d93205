#include "search/MessageView.h"

#include <QUrl>
#include <cstdio>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "archive/Statements.h"
#include "platform/Dialogs.h"
#include "platform/Pasteboard.h"
#include "platform/Workspace.h"
#include "search/AttachmentLink.h"
#include "search/ResultList.h"
#include "search/SqlErrorReport.h"

namespace quillery::search {
namespace {

const QString kMarker = QStringLiteral("ATTACHMENTS:");

}  // namespace

MessageView::MessageView(archive::Archive& archive, ResultList& list, platform::Dialogs& dialogs,
                         platform::Workspace& workspace, platform::Pasteboard& pasteboard,
                         QObject* parent)
    : QObject(parent),
      archive_(archive),
      list_(list),
      dialogs_(dialogs),
      workspace_(workspace),
      pasteboard_(pasteboard) {}

void MessageView::tableViewSelectionDidChange(int displayRow) {
  attachmentIDForView = 0;
  if (displayRow < 0 || displayRow >= list_.emailRows.size())
    return;
  showMessage(list_.rowAt(displayRow).emailID());
}

void MessageView::showMessage(int id) {
  attachmentIDForView = 0;
  if (!list_.reopenListedArchive())
    return;
  if (reportOnStderr(
          archive_.exec(QStringLiteral("SELECT count(id) FROM attachments WHERE id=%1").arg(id),
                        archive::singleValueCallback, &archive_)) &&
      archive_.sqlResult.toInt() != 0)
    attachmentIDForView = id;
  // A message that has gone shows nothing rather than the message shown before.
  rowText.clear();
  reportOnStderr(archive_.exec(QString::fromLatin1(archive::kPrintTextStatement).arg(id),
                               archive::printTextCallback, &rowText));
  shown_ = MessageText{rowText, {}};
  displayAttachments();
  Q_EMIT bodyTextChanged(shown_);
}

void MessageView::displayAttachments() {
  const qsizetype marker = shown_.text.indexOf(kMarker);
  if (marker < 0)
    return;
  shown_.text.truncate(marker + kMarker.size());
  shown_.text += QLatin1Char('\n');
  archive_.columnValues.clear();
  archive_.columnRowCount = 0;
  if (!reportOnStderr(
          archive_.exec(QStringLiteral("SELECT filename_fld FROM attachments WHERE id=%1")
                            .arg(attachmentIDForView),
                        archive::columnListCallback, &archive_)))
    return;
  for (int i = 0; i < archive_.columnValues.size(); ++i) {
    QString name = archive_.columnValues.at(i);
    name.remove(QLatin1Char('\n'));
    shown_.text += QLatin1Char('\n');
    shown_.links.append(
        {int(shown_.text.size()), int(name.size()), AttachmentLink::pathFor(tempDir_, i, name)});
    shown_.text += name + QStringLiteral("\n\n");
  }
}

void MessageView::viewOrig(int displayRow) {
  if (list_.emailRows.isEmpty() || displayRow < 0 || displayRow >= list_.emailRows.size())
    return;
  if (list_.reopenListedArchive())
    viewOrigOf(list_.rowAt(displayRow).emailID());
}

void MessageView::viewOrigOf(int id) {
  reportOnStderr(archive_.exec(QStringLiteral("SELECT orig_fld FROM origemail WHERE id=%1").arg(id),
                               archive::singleValueCallback, &archive_));
  if (archive_.sqlResult.size() > 1) {
    Q_EMIT origShown(archive_.sqlResult);
    return;
  }
  dialogs_.inform(
      QString(), QStringLiteral("There is no original raw source for this email in the database."));
}

void MessageView::replyToEmail(int displayRow) {
  if (list_.emailRows.isEmpty() || displayRow < 0 || displayRow >= list_.emailRows.size())
    return;
  if (!list_.reopenListedArchive())
    return;
  const int id = list_.rowAt(displayRow).emailID();
  reportOnStderr(archive_.exec(QStringLiteral("SELECT mailto FROM email WHERE id=%1").arg(id),
                               archive::singleValueCallback, &archive_));
  if (archive_.sqlResult.isEmpty())
    reportOnStderr(archive_.exec(QStringLiteral("SELECT from_fld FROM email WHERE id=%1").arg(id),
                                 archive::singleValueCallback, &archive_));
  const QString address = archive_.sqlResult;
  QString quoted = shown_.text;
  const QString idLine = QStringLiteral("ID: %1\n").arg(id);
  const qsizetype at = quoted.indexOf(idLine);
  if (at >= 0)
    quoted.remove(at, idLine.size());
  pasteboard_.setText(quoted);
  // The address goes into the URL as it stands, without escaping.
  workspace_.openUrl(QUrl(QStringLiteral("mailto:") + address, QUrl::TolerantMode));
}

}  // namespace quillery::search
