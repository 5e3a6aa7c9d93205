#pragma once

#include <QObject>
#include <QString>

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Files;
class Progress;
class Workspace;
}  // namespace quillery::platform

namespace quillery::search {

// A click on an attachment link of the message view: the attachment is fetched from the
// archive into the temporary file the link names, decoded from Base64 when it was stored
// encoded, and then shown in the HTML window (names ending in ".html" or ".htm", in that
// case) or offered to launch or save. The temporary files stay in the run's temporary folder.
class AttachmentOpener : public QObject {
  Q_OBJECT

 public:
  AttachmentOpener(archive::Archive& archive, platform::Dialogs& dialogs,
                   platform::Progress& progress, platform::Files& files,
                   platform::Workspace& workspace, const QString& homeDir,
                   QObject* parent = nullptr);

  // Handles a click on the link of the message attachmentIDForView. Returns false when the
  // attachment could not be fetched: a failing query (written to the standard error stream;
  // the progress panel stays), an attachment that is no longer in the archive at that
  // position ("This attachment is no longer in the database."), or a temporary file that
  // cannot be written ("Couldn't open %s", as when the temporary folder has been removed).
  // Every other outcome, saved or not, is true.
  bool textViewClickedOnLink(const QString& link, int attachmentIDForView);

  // The fetching steps alone: writes the decoded attachment to the file the link names.
  // False after the failure has been reported as above.
  bool fetchAttachment(const QString& link, int attachmentIDForView);

  // What the user may do with a fetched attachment that is not shown as HTML: "Launch",
  // "Cancel" or "Save", and "Save" again when launching fails.
  void offerLaunchOrSave(const QString& path, const QString& fileName);

 Q_SIGNALS:
  // An HTML attachment was fetched to this file: show its bytes in the HTML window.
  void htmlAttachmentShown(const QString& path);

 private:
  // Runs the save panel and copies the temporary file to the chosen path, replacing a file
  // that is there.
  void saveAttachment(const QString& path, const QString& fileName);
  // Turns the Base64 text of the file into its bytes, in place.
  bool decodeInPlace(const QString& path);

  archive::Archive& archive_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  platform::Files& files_;
  platform::Workspace& workspace_;
  QString homeDir_;
};

}  // namespace quillery::search
