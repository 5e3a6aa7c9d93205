#pragma once

namespace quillery::ingest {

// The counts of one store run. The record reader and the storing step add to them; the run
// reports them in its summary and resets them at four points, each clearing its own set.
struct StoreRunCounters {
  int parsedCount = 0;       // the run log's "PARSED:" number, else processedCount
  int processedCount = 0;    // "FROM:" lines read
  int storedCount = 0;       // email rows inserted
  int duplicateCount = 0;    // earlier copies found and replaced
  int sqlErrorCount = 0;     // SQL errors written to the store log
  int invalidFileCount = 0;  // "INVALID:" lines in the run log
  int lowestStoredId = 999999;
  int highestStoredId = 0;

  enum class ResetPoint {
    // The Store action, before its checks: the four counts and the id range start afresh.
    // The SQL error and invalid file counts are left for their own points.
    RunStart,
    // The store log has been opened (emptied): its error count starts from 0.
    StoreLogOpened,
    // The tool's run log is about to be read: its invalid files are counted from 0.
    RunLogRead,
    // The summary has been written: the counts are cleared for the next run, which tests
    // processedCount to see whether one is under way. The id range and the invalid file
    // count stay as the summary and the listing used them.
    RunEnd,
  };

  void reset(ResetPoint point) {
    switch (point) {
      case ResetPoint::RunStart:
        parsedCount = storedCount = duplicateCount = processedCount = 0;
        lowestStoredId = 999999;
        highestStoredId = 0;
        break;
      case ResetPoint::StoreLogOpened:
        sqlErrorCount = 0;
        break;
      case ResetPoint::RunLogRead:
        invalidFileCount = 0;
        break;
      case ResetPoint::RunEnd:
        sqlErrorCount = parsedCount = storedCount = duplicateCount = processedCount = 0;
        break;
    }
  }
};

}  // namespace quillery::ingest
