#pragma once

#include <QByteArray>
#include <QString>

namespace quillery::ingest {

// What one read of the parser tool's standard output says. The tool writes either a status
// ("... attachment\n" while it converts an attachment or an HTML part, "Looking for email"
// while it searches) or the announcement of a message it has written, which must be answered
// before it writes again; a status written just before an announcement may arrive with it in
// the same read.
struct ToolChunk {
  enum class Kind { AttachmentStatus, SearchingStatus, Announcement };

  Kind kind = Kind::Announcement;
  // For an announcement: its text (the file and the subject line) with the statuses before
  // it stripped; "file path\nsubject line" when the chunk is not valid UTF-8.
  QString announcement;

  // Sorts a non-empty chunk.
  static ToolChunk read(const QByteArray& chunk);
};

}  // namespace quillery::ingest
