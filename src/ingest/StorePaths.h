#pragma once

#include <QString>
#include <QStringList>

namespace quillery::ingest {

// The files a store run keeps beside the archive file.
struct StorePaths {
  QString dbPath;
  QString messageFile;  // archive path + ".tmp": one record, rewritten per message
  QString rawFile;      // archive path + ".raw": that message's source
  QString runLog;       // archive path + ".log": the parser tool's log
  QString storeLog;     // archive path + ".storelog": the run's summary and SQL errors

  // The files a run makes and deletes at its end: the record files and the tool's log.
  QStringList workFiles() const { return {messageFile, rawFile, runLog}; }

  static StorePaths forArchive(const QString& dbPath) {
    return {dbPath, dbPath + QStringLiteral(".tmp"), dbPath + QStringLiteral(".raw"),
            dbPath + QStringLiteral(".log"), dbPath + QStringLiteral(".storelog")};
  }
};

}  // namespace quillery::ingest
