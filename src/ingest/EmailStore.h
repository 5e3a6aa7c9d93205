#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "archive/Archive.h"
#include "ingest/CurrentMessage.h"
#include "ingest/StorePaths.h"
#include "ingest/StoreRunCounters.h"

namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform

namespace quillery::ingest {

class StoreLog;

// Writes the message that the record reader has left in the current message into the open
// archive, inside the store run's transaction: an earlier copy of it (same date, to, from and
// subject) is replaced and its tags carried over, then the email row, the tags row, the raw
// source (when the source switch is on) and, one call each, the attachment rows follow.
// SQL errors that do not stop the run go to the store log, each followed by a line
// "SQLite: <error text>" that gives SQLite's reason; the user sees only three alerts:
// "Store Failed" for an archive that proves corrupt (openFailed is raised and
// damagedArchiveFound answers true, which ends the run), "SQL error: %s" for a failing tags
// row and "Couldn't open %@" for a missing raw file.
// Texts are escaped on their way into statements and log lines; the current message keeps
// them as read, so storing it again (as the reader does when an attachment follows a failed
// store) finds the first copy as a duplicate and replaces it. A statement cannot carry a NUL
// character (binary junk in a part without encoding): each one is stored as U+FFFD, the
// replacement character, and nothing else of the text changes.
class EmailStore {
 public:
  EmailStore(archive::Archive& archive, CurrentMessage& message, StoreRunCounters& counters,
             StoreLog& storeLog, platform::Dialogs& dialogs, platform::Progress& progress);

  // Starts storing for a run: the archive path (named in the corrupt-archive alert) and the
  // raw file of the run; a damaged archive found before is forgotten.
  void beginRun(const StorePaths& paths) {
    paths_ = paths;
    damagedArchiveFound_ = false;
  }
  // Whether each message's raw source is kept; when off, the raw file is never opened.
  void setOrigState(bool on) { origState_ = on; }

  // Reads the raw file now, when the source is kept (and only then), so that the parser
  // tool may rewrite it while the message is stored; until releaseRawFile, storeEmail takes
  // the source from what was read, and a raw file that could not be read is reported there
  // as missing. Without it storeEmail reads the raw file itself.
  void loadRawFile();
  void releaseRawFile();

  // Stores the current message with numAttach as its attachment count. On success
  // lastStoredId is the new row's id and messageStored is raised; a message whose insert
  // fails is logged and stored once more with an empty subject, and a message that cannot
  // be stored even so (or whose body is empty) is dropped without a trace.
  void storeEmail(int numAttach);
  // Stores one attachment of the message stored last, under lastStoredId. A failure is
  // logged; the message row stays.
  void doAttachment(const QString& attachText);
  // Sets the attachment count of the message stored last (lastStoredId), once its
  // attachment section has ended. A failure is logged and counted; the row keeps the count
  // it was inserted with.
  void updateNumAttach(int numAttach);

  // Whether a statement of this run found the archive damaged (not a database any more).
  bool damagedArchiveFound() const { return damagedArchiveFound_; }

  // The duplicate test: the ids of rows with this date, to, from and subject (escaped).
  static QString duplicateStatement(const QString& date, const QString& to, const QString& from,
                                    const QString& subject);

 private:
  void replaceDuplicate(int id);
  // Inserts the email row; false when the message could not be stored.
  bool insertEmail(int numAttach);
  bool insertTags();
  bool insertRawSource();
  using RowCallback = int (*)(void*, int, char**, char**);
  // Runs a statement of the store, its NUL characters replaced first.
  archive::ExecResult execute(QString& statement, RowCallback callback = nullptr,
                              void* context = nullptr);
  // "%d  %s::%s::%s::%s::%s" after an error text: the result code and the message's date,
  // from, to, subject and mailbox (which keeps its line end), escaped as in the statements.
  QString messageFields(int code) const;
  // Writes a failure's log line, then "SQLite: <error text>" on a line of its own, and
  // counts the error.
  void logFailure(QString line, const archive::ExecResult& result);
  void reportCorruptArchive();

  archive::Archive& archive_;
  CurrentMessage& message_;
  StoreRunCounters& counters_;
  StoreLog& storeLog_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
  StorePaths paths_;
  bool origState_ = true;
  bool rawLoaded_ = false;
  bool damagedArchiveFound_ = false;
  std::optional<QByteArray> rawBytes_;
  // The header fields of the message stored last, escaped.
  struct EscapedHeaders {
    QString from, to, subject, mailto, mailbox;
  };
  EscapedHeaders headers_;
};

}  // namespace quillery::ingest
