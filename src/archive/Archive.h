#pragma once

#include <QString>
#include <QStringList>

#include "archive/Records.h"

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

  // Closes whatever connection is open, opens the archive file at dbPath (creating it when
  // missing), stamps it with the application's creator and type, checks its format and
  // creates the tables it lacks. On failure it shows the alert the user needs and raises
  // openFailed, which it never clears; nothing is written except tables created before the
  // failing step.
  void openDB(const QString& dbPath);
  // Closes the connection and empties the slot; does nothing when no connection is open.
  void close();
  bool isOpen() const { return archiveConnection != nullptr; }

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

  // Writes the creator and type code onto the archive file; failures are ignored.
  void setFileCreator(const QString& path);

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
  // Creates one table when its probe fails; false (after the alert) when that fails too.
  bool ensureTable(const char* probe, const char* create);
  void reportCreateFailure(const ExecResult& result);
  void ensureIndexes();

  platform::Dialogs& dialogs_;
  platform::Files& files_;
};

}  // namespace quillery::archive
