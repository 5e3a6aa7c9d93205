#pragma once

#include <QObject>
#include <QString>

#include "search/MessageText.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Pasteboard;
class Workspace;
}  // namespace quillery::platform

namespace quillery::search {

class ResultList;

// The message view: the selected message as a text block with its attachments as links, its
// raw source, and a reply. Statements run on the connection the list's retrieval left open
// (reopening the listed archive when something closed it); their errors go to the standard
// error stream as "SQL error: %s\n" and the view shows what was built.
class MessageView : public QObject {
  Q_OBJECT

 public:
  MessageView(archive::Archive& archive, ResultList& list, platform::Dialogs& dialogs,
              platform::Workspace& workspace, platform::Pasteboard& pasteboard,
              QObject* parent = nullptr);

  // The run's temporary folder, which the attachment links point into.
  void setTempDir(const QString& tempDir) { tempDir_ = tempDir; }
  const QString& tempDir() const { return tempDir_; }

  // Shows the message at this table row (-1: none selected, the view stays as it is).
  void tableViewSelectionDidChange(int displayRow);
  // Shows the message with this id: its text block, cut after "ATTACHMENTS:" when the text
  // has that marker and followed by one link per attachments row. Without the marker no
  // links are shown, whatever rows exist.
  void showMessage(int id);

  // Shows the raw source of the message at this row in the source window, or the alert
  // "There is no original raw source for this email in the database.". The single-value
  // result is not cleared first: without a source row it still holds the previous result
  // (after a selection, the attachment count), so a text of one character or less counts as
  // no source.
  void viewOrig(int displayRow);
  // The same for the message with this id.
  void viewOrigOf(int id);
  // Starts a reply to the message at this row: the shown text without its "ID: n" line goes
  // to the clipboard and "mailto:" with the reply address (mailto, else the sender) opens.
  void replyToEmail(int displayRow);

  // The id of the shown message when it has attachments rows, else 0.
  int attachmentIDForView = 0;
  // The message's text block as the row callback made it.
  QString rowText;
  // What the view shows.
  const MessageText& shown() const { return shown_; }

 Q_SIGNALS:
  void bodyTextChanged(const MessageText& text);
  void origShown(const QString& source);

 private:
  // Cuts the shown text after "ATTACHMENTS:" and adds a link for each attachment.
  void displayAttachments();

  archive::Archive& archive_;
  ResultList& list_;
  platform::Dialogs& dialogs_;
  platform::Workspace& workspace_;
  platform::Pasteboard& pasteboard_;
  QString tempDir_;
  MessageText shown_;
};

}  // namespace quillery::search
