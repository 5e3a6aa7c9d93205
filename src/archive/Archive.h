#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <initializer_list>

#include "archive/Records.h"
#include "archive/SearchIndex.h"

struct sqlite3;

namespace quillery::platform {
class Dialogs;
class Files;
}  // namespace quillery::platform

namespace quillery::archive {

// What sqlite3_exec answered: its result code and, on failure, its error text.
struct ExecResult {
  int code = 0;
  QString error;
  bool ok() const { return code == 0; }
};

// How opening an archive file ended.
struct OpenStatus {
  enum class Outcome {
    Opened,
    // SQLite could not open the file at all (or the path is empty): code and error say why.
    CannotOpen,
    // The file is not an SQLite database, or is damaged (found when a table had to be made).
    NotADatabase,
    // The email table lacks numAttach: the format before that column, to be converted.
    OldFormat,
    // A missing table could not be created for another reason: code and error say why.
    CreateFailed,
  };
  Outcome outcome = Outcome::Opened;
  int code = 0;
  QString error;
  bool ok() const { return outcome == Outcome::Opened; }
};

// The four tables that carry a message's id.
enum class MessageTable { Email, Attachments, Origemail, Tags };

// The one shared connection to the archive file and the state that the shared row callbacks
// fill. Every statement of the application is composed as text and run through exec(); the
// caller resets the state its callback writes before the query.
class Archive : public IdListState {
 public:
  // The table texts, executed exactly so when a table is missing.
  static const char* const kCreateEmail;
  static const char* const kCreateAttachments;
  static const char* const kCreateOrigemail;
  static const char* const kCreateTags;
  // The alert text for an archive in the format before numAttach existed.
  static const char* const kOldFormatMessage;

  Archive(platform::Dialogs& dialogs, platform::Files& files);
  ~Archive();
  Archive(const Archive&) = delete;
  Archive& operator=(const Archive&) = delete;

  // Whether an open archive gets its search index (SearchIndex::attach): a file opened only
  // to be read from, such as the other file of a merge, is left without a side file.
  enum class IndexUse { Attach, Leave };

  // Closes whatever connection is open, opens the archive file at dbPath (creating it when
  // missing), stamps it with the application's creator and type, checks its format and
  // creates the tables it lacks, then attaches its search index. On failure it shows the
  // alert the user needs and raises openFailed, which it never clears; nothing is written
  // except tables created before the failing step.
  void openDB(const QString& dbPath, IndexUse indexUse = IndexUse::Attach);
  // openDB for an action that gives up when the archive cannot be opened: answers false when
  // openFailed is raised afterwards (also when an earlier failure left it raised) and lowers
  // it, so that the next action starts afresh.
  bool openForAction(const QString& dbPath);
  // The same steps as openDB without alerts and without touching openFailed: the caller
  // decides what to tell the user (reportOpenFailure gives openDB's alerts). On failure the
  // connection may be left open (a file of the old format, or one whose table could not be
  // made) or closed (a file that could not be opened).
  OpenStatus openArchive(const QString& dbPath, IndexUse indexUse = IndexUse::Attach);
  // The steps of openArchive one by one. openFile closes whatever connection is open, opens
  // the file (SQLite creates an empty one when it is missing) and stamps it; a failed open
  // leaves no connection. hasCurrentFormat probes for the numAttach column (false also when
  // the email table is missing). createMissingTables creates, in the order email,
  // attachments, origemail, tags, each table whose probe fails, and the indexes; it stops at
  // the first table that cannot be made.
  OpenStatus openFile(const QString& dbPath);
  bool hasCurrentFormat();
  OpenStatus createMissingTables();
  // Shows the alert of a failed open, the text naming path where the text has one.
  void reportOpenFailure(const OpenStatus& status, const QString& path);
  // Closes the connection and empties the slot; does nothing when no connection is open. The
  // search index records first what it needs to find itself current at the next open.
  void close();
  bool isOpen() const { return archiveConnection != nullptr; }
  // The absolute path of the file open on the connection; empty when none is open (or the
  // database lives in memory).
  QString filePath() const;

  // Runs a statement with an optional row callback and its context.
  ExecResult exec(const QString& sql, int (*callback)(void*, int, char**, char**) = nullptr,
                  void* context = nullptr);
  // Runs the statement composed in sqlText.
  ExecResult execSqlText(int (*callback)(void*, int, char**, char**) = nullptr,
                         void* context = nullptr) {
    return exec(sqlText, callback, context);
  }
  // The id of the row inserted last on this connection.
  long long lastInsertRowId() const;
  // Whether a statement is running (its row callback may have let events be handled).
  bool executing() const { return executing_ > 0; }

  // Runs "DELETE FROM <table> WHERE id=<id>" for each table in the order given. Each failure
  // is handed to onFailure, which answers whether to go on with the next table; returns true
  // when every statement succeeded. Storing a message again, deleting messages and merging
  // all remove a message's rows this way, each with its own tables, order and error report.
  bool deleteMessageRows(int id, std::initializer_list<MessageTable> tables,
                         const std::function<bool(const ExecResult&)>& onFailure);

  // Writes the creator and type code onto the archive file; failures are ignored.
  void setFileCreator(const QString& path);
  // Creates the indexes beyond the four tables that every opened archive gets (messages by
  // date, attachments by id), where they are missing. Failures leave a slower archive and
  // are ignored. createMissingTables ends with this; a rebuild of a table calls it again.
  void ensureIndexes();

  // The substring index beside the archive open on the connection.
  SearchIndex& searchIndex() { return searchIndex_; }

  sqlite3* archiveConnection = nullptr;
  bool openFailed = false;
  // Raised while a store run holds the connection with its transaction open. Reopening the
  // archive then would roll back everything stored so far, so actions that would call
  // openDB check this first: they use the open connection as it stands, or wait.
  bool storeRunUnderWay = false;
  QString sqlText;
  QString sqlResult;
  QStringList columnValues;
  int columnRowCount = 0;

 private:
  // Creates one table when its probe fails.
  OpenStatus ensureTable(const char* probe, const char* create);

  platform::Dialogs& dialogs_;
  platform::Files& files_;
  int executing_ = 0;
  SearchIndex searchIndex_{*this};
};

}  // namespace quillery::archive
