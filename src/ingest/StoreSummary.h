#pragma once

#include <QString>
#include <QStringList>

#include "ingest/StoreRunCounters.h"

namespace quillery::ingest {

// The end of a store run in words: what the parser tool's run log reports and the summary
// that the run writes to its store log and shows.
class StoreSummary {
 public:
  // How many invalid files the summary lists by name; further ones are shown as "...".
  static constexpr int kListedInvalidFiles = 6;

  // Reads the run log at path in line pieces of at most 29,999 bytes, each decoded as UTF-8.
  // Every "INVALID:" line adds 1 to invalidFileCount and the first six are kept (the text
  // after their first 9 characters, line end included, into invalidPaths); the last "PARSED:" line
  // sets parsedCount from the integer after 7 characters. Afterwards a parsedCount of 0 becomes
  // processedCount. invalidFileCount starts from 0 even when the log is missing, so that a
  // run never reports the files of the run before. Returns false when the log is missing
  // or unreadable; the counters are then left as they were apart from that reset.
  static bool readRunLog(const QString& path, StoreRunCounters& counters,
                         QStringList& invalidPaths);

  // The summary text: the four counts, the last file parsed and, when there were invalid
  // files, their number, the kept paths and "...\n" when more than six were reported.
  static QString compose(const StoreRunCounters& counters, const QString& lastProgressText,
                         const QStringList& invalidPaths);
};

}  // namespace quillery::ingest
