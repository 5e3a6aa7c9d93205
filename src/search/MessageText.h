#pragma once

#include <QList>
#include <QString>

namespace quillery::search {

// One attachment link of the message view: the characters of the file name in the text,
// and the link, which is the path of the temporary file that a click on it writes.
struct AttachmentLinkRange {
  int start = 0;
  int length = 0;
  QString path;

  bool operator==(const AttachmentLinkRange&) const = default;
};

// What the message view shows: the text and its attachment links.
struct MessageText {
  QString text;
  QList<AttachmentLinkRange> links;

  bool operator==(const MessageText&) const = default;
};

}  // namespace quillery::search
