#include "search/AttachmentOpener.h"

#include <QFile>
#include <cstdio>
#include <memory>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "platform/Dialogs.h"
#include "platform/Files.h"
#include "platform/Progress.h"
#include "platform/Workspace.h"
#include "search/AttachmentLink.h"
#include "search/Base64Decoder.h"
#include "search/SqlErrorReport.h"
#include "text/LeadingInt.h"

namespace quillery::search {
namespace {

using platform::Alert;
using platform::AlertStyle;

// A FILE* that closes itself.
struct FileCloser {
  void operator()(std::FILE* file) const {
    if (file != nullptr)
      std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

File openFile(const QString& path, const char* mode) {
  return File(std::fopen(QFile::encodeName(path).constData(), mode));
}

}  // namespace

AttachmentOpener::AttachmentOpener(archive::Archive& archive, platform::Dialogs& dialogs,
                                   platform::Progress& progress, platform::Files& files,
                                   platform::Workspace& workspace, const QString& homeDir,
                                   QObject* parent)
    : QObject(parent),
      archive_(archive),
      dialogs_(dialogs),
      progress_(progress),
      files_(files),
      workspace_(workspace),
      homeDir_(homeDir) {}

bool AttachmentOpener::textViewClickedOnLink(const QString& link, int attachmentIDForView) {
  if (!fetchAttachment(link, attachmentIDForView))
    return false;
  const QString fileName = AttachmentLink::parse(link).fileName;
  if (fileName.endsWith(QLatin1String(".html")) || fileName.endsWith(QLatin1String(".htm"))) {
    Q_EMIT htmlAttachmentShown(link);
    return true;
  }
  offerLaunchOrSave(link, fileName);
  return true;
}

bool AttachmentOpener::fetchAttachment(const QString& link, int attachmentIDForView) {
  progress_.open(QStringLiteral("Retrieving attachment..."));
  const AttachmentLink::Parts parts = AttachmentLink::parse(link);
  const QString id = QString::number(attachmentIDForView);
  archive_.columnValues.clear();
  archive_.columnRowCount = 0;
  // The names first: a link shown before its rows were deleted must not fetch whichever
  // attachment now stands at its position.
  archive::ExecResult result =
      archive_.exec(QStringLiteral("SELECT filename_fld FROM attachments WHERE id=") + id,
                    archive::columnListCallback, &archive_);
  const QString nameThere =
      result.ok() ? archive_.columnValues.value(parts.position).remove(QLatin1Char('\n'))
                  : QString();
  archive_.columnValues.clear();
  archive_.columnRowCount = 0;
  if (result.ok())
    result = archive_.exec(
        QStringLiteral("SELECT encode_fld,attach_fld FROM attachments WHERE id=") + id,
        archive::columnListCallback, &archive_);
  if (!result.ok()) {
    reportOnStderr(result);
    return false;
  }
  const qsizetype at = 2 * qsizetype(parts.position);
  if (parts.position < 0 || nameThere != parts.fileName || at + 1 >= archive_.columnValues.size()) {
    progress_.close();
    dialogs_.critical(QString(), QStringLiteral("This attachment is no longer in the database."));
    return false;
  }
  const bool encoded = text::leadingInt(archive_.columnValues.at(at)) != 0;
  QFile file(link);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
    progress_.close();
    dialogs_.critical(QString(), QStringLiteral("Couldn't open ") + link);
    return false;
  }
  file.write(archive_.columnValues.at(at + 1).toUtf8());
  file.close();
  archive_.columnValues.clear();
  if (encoded && !decodeInPlace(link)) {
    progress_.close();
    dialogs_.critical(QString(), QStringLiteral("Couldn't open ") + link + QStringLiteral(".tmp"));
    return false;
  }
  progress_.close();
  return true;
}

bool AttachmentOpener::decodeInPlace(const QString& path) {
  const QString decoded = path + QStringLiteral(".tmp");
  {
    const File in = openFile(path, "rb");
    const File out = openFile(decoded, "wb");
    if (!in || !out)
      return false;
    Base64Decoder::decodeBase64File(in.get(), out.get());
  }
  files_.remove(path);
  return files_.move(decoded, path);
}

void AttachmentOpener::offerLaunchOrSave(const QString& path, const QString& fileName) {
  const int answer = dialogs_.showAlert(
      Alert{AlertStyle::Informational,
            QStringLiteral("What do you want to do with this attachment?"),
            QStringLiteral("Do you want to launch it or save it to a file?"),
            {QStringLiteral("Launch"), QStringLiteral("Cancel"), QStringLiteral("Save")}});
  if (answer == 1)
    return;
  if (answer == 0) {
    if (workspace_.openFile(path))
      return;
    const int again = dialogs_.showAlert(Alert{AlertStyle::Informational,
                                               QStringLiteral("Unable to launch this attachment."),
                                               QStringLiteral("Try saving it instead."),
                                               {QStringLiteral("Save"), QStringLiteral("Cancel")}});
    if (again != 0)
      return;
  }
  saveAttachment(path, fileName);
}

void AttachmentOpener::saveAttachment(const QString& path, const QString& fileName) {
  platform::SavePanel panel;
  panel.title = QStringLiteral("Save Attachment");
  panel.directory = homeDir_ + QStringLiteral("/Desktop");
  panel.fileName = fileName;
  const QString chosen = dialogs_.runSavePanel(panel);
  if (chosen.isEmpty())
    return;
  if (files_.exists(path)) {
    progress_.open(QStringLiteral("Saving..."));
    if (files_.exists(chosen) && !files_.remove(chosen)) {
      progress_.close();
      // The text has no placeholder and is shown exactly so.
      dialogs_.critical(QString(), QStringLiteral("Unable to remove @"));
      return;
    }
    if (files_.copy(path, chosen)) {
      progress_.close();
      dialogs_.inform(QString(), QStringLiteral("The attachment has been saved"));
      return;
    }
    progress_.close();
  }
  dialogs_.critical(QString(), QStringLiteral("Unable to save attachment"));
}

}  // namespace quillery::search
