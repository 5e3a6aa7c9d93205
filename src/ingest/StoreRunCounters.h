#pragma once

namespace quillery::ingest {

// The counts of one store run. The run resets them when it starts and reports them in its
// summary; the record reader and the storing step add to them.
struct StoreRunCounters {
  int parsedCount = 0;       // the run log's "PARSED:" number, else processedCount
  int processedCount = 0;    // "FROM:" lines read
  int storedCount = 0;       // email rows inserted
  int duplicateCount = 0;    // earlier copies found and replaced
  int sqlErrorCount = 0;     // SQL errors written to the store log
  int invalidFileCount = 0;  // "INVALID:" lines in the run log
  int lowestStoredId = 999999;
  int highestStoredId = 0;
};

}  // namespace quillery::ingest
