#include "ingest/StoreSummary.h"

#include <QFile>

#include "text/LeadingInt.h"

namespace quillery::ingest {

namespace {
// The run log is read in the same line pieces as the record files.
constexpr int kLinePiece = 30000;  // readLine stores at most 29,999 bytes and a NUL
}  // namespace

bool StoreSummary::readRunLog(const QString& path, StoreRunCounters& counters,
                              QStringList& invalidPaths) {
  counters.reset(StoreRunCounters::ResetPoint::RunLogRead);
  invalidPaths.clear();
  QFile log(path);
  const bool read = log.open(QIODevice::ReadOnly);
  if (read) {
    QByteArray piece(kLinePiece, '\0');
    qint64 length = 0;
    while ((length = log.readLine(piece.data(), kLinePiece)) > 0) {
      const QString line = QString::fromUtf8(piece.constData(), length);
      if (line.startsWith(QLatin1String("INVALID:"))) {
        ++counters.invalidFileCount;
        if (invalidPaths.size() < kListedInvalidFiles)
          invalidPaths.append(line.mid(9));
      } else if (line.startsWith(QLatin1String("PARSED:"))) {
        counters.parsedCount = text::leadingInt(line.mid(7));
      }
    }
  }
  if (counters.parsedCount == 0)
    counters.parsedCount = counters.processedCount;
  return read;
}

QString StoreSummary::compose(const StoreRunCounters& counters, const QString& lastProgressText,
                              const QStringList& invalidPaths) {
  QString summary =
      QStringLiteral("Parsed: %1\nProcessed: %2\nStored: %3\nDuplicates replaced: %4\n")
          .arg(counters.parsedCount)
          .arg(counters.processedCount)
          .arg(counters.storedCount)
          .arg(counters.duplicateCount);
  // Appended, not formatted: the file name may itself hold "%1".
  summary += QStringLiteral("last file parsed: ") + lastProgressText + QLatin1Char('\n');
  if (counters.invalidFileCount != 0) {
    summary += QStringLiteral("Invalid Files: %1\n").arg(counters.invalidFileCount);
    for (const QString& path : invalidPaths)
      summary += path;
    if (counters.invalidFileCount > kListedInvalidFiles)
      summary += QStringLiteral("...\n");
  }
  return summary;
}

}  // namespace quillery::ingest
