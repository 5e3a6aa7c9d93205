#pragma once

#include <QString>
#include <QStringView>
#include <functional>

#include "ingest/CurrentMessage.h"
#include "ingest/StoreRunCounters.h"

namespace quillery::ingest {

class EmailStore;

// Reads the message records that the parser tool leaves in the message file and hands each
// message to the storing step: the header and tag lines fill the current message, the body
// and every attachment follow, and the store is called before the first attachment row (or
// after the body when there is none). Fields that a record does not carry keep the values
// of the record before; only the four tag fields are cleared per record.
//
// A record that lacks a closing line ("ENDOFBODY:", "ENDATTACH:", "ENDATTACHMENTS:" or
// "ENDOFEMAIL:") ends at the end of its text, which closes each open section in turn: the
// message is still stored with what was read.
class RecordReader {
 public:
  // Called for every "FROM:" line, after processedCount has been raised: the store run counts
  // the message in the result list and shows that count as its progress.
  using MessageCounted = std::function<void()>;

  RecordReader(EmailStore& store, CurrentMessage& message, StoreRunCounters& counters,
               MessageCounted messageCounted);

  // Reads the message file whole, as UTF-8, or, when it is not valid UTF-8, in line pieces
  // of at most 29,999 bytes, each decoded as UTF-8 or else as Windows-1252, and stores the
  // record it holds. Returns 0 when the file cannot be opened (nothing is stored), else 1,
  // also for an empty file, which stores nothing.
  //
  // filesRead, when given, is called once the message file and the raw file are both in
  // memory and before anything is stored (not at all when the message file cannot be
  // opened): from then on the parser tool may write its next message into the two files
  // while this one is stored.
  int doOneEmail(const QString& messageFilePath, const std::function<void()>& filesRead = nullptr);

  // Parses one record and stores its message. A record that stores nothing still folds
  // lastStoredId into the run's id range, which then does not change.
  void storeInDB(const QString& record);

 private:
  class Lines;
  // Fills the field of a header or tag line; "FROM:" also counts the message.
  void readHeaderLine(QStringView line);
  // From the "BODY:" line to the end of the attachment section, if any.
  // Returns true when the line after the body ends the record.
  bool readBody(QStringView firstLine, Lines& lines);
  void readAttachments(Lines& lines);
  void readAttachmentField(QStringView line);
  // Collects lines up to one that ends with endMarker (dropped whole) into text.
  static void collectUntil(Lines& lines, QStringView endMarker, QString& text);

  EmailStore& store_;
  CurrentMessage& message_;
  StoreRunCounters& counters_;
  MessageCounted messageCounted_;
};

}  // namespace quillery::ingest
