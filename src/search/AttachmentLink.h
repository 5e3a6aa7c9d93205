#pragma once

#include <QString>

namespace quillery::search {

// The path behind an attachment link: the run's temporary folder, the attachment's position
// among the message's attachments (0, 1, ...), the marker "-QL-" and the file name, so the
// third attachment report.pdf links to "<tempDir>/2-QL-report.pdf". The link is also the path
// of the temporary file that a click writes.
class AttachmentLink {
 public:
  static constexpr char kMarker[] = "-QL-";

  static QString pathFor(const QString& tempDir, int position, const QString& fileName);

  // The position and file name that a link names, read from its last path component; the
  // position is -1 when the component does not have the form "N-QL-name".
  struct Parts {
    int position = -1;
    QString fileName;
  };
  static Parts parse(const QString& link);
};

}  // namespace quillery::search
