// libFuzzer target: any bytes as the message file of a store run, decoded and stored as the
// run does it, into an archive in memory with the raw source switch on.
#include <cstddef>
#include <cstdint>

#include "archive/Archive.h"
#include "ingest/EmailStore.h"
#include "ingest/RecordReader.h"
#include "ingest/StoreLog.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "platform/qt/QtFiles.h"
#include "text/LinePieces.h"

namespace {

using namespace quillery;

class NoDialogs : public platform::Dialogs {
 public:
  int showAlert(const platform::Alert&) override { return 0; }
  QString runSavePanel(const platform::SavePanel&) override { return {}; }
  QStringList runOpenPanel(const platform::OpenPanel&) override { return {}; }
};

class NoProgress : public platform::Progress {
 public:
  void open(const QString&) override {}
  void setTitle(const QString&) override {}
  void showCount(const QString&) override {}
  void showItem(const QString&) override {}
  void setRunControlsVisible(bool, RunControls) override {}
  void close() override {}
};

struct Run {
  Run() {
    archive.openDB(QStringLiteral(":memory:"));
    store.beginRun(ingest::StorePaths::forArchive(QStringLiteral("/nonexistent/fuzz")));
    store.setOrigState(true);
  }
  NoDialogs dialogs;
  NoProgress progress;
  platform::QtFiles files;
  archive::Archive archive{dialogs, files};
  ingest::CurrentMessage message;
  ingest::StoreRunCounters counters;
  ingest::StoreLog storeLog;
  ingest::EmailStore store{archive, message, counters, storeLog, dialogs, progress};
  ingest::RecordReader reader{store, message, counters, nullptr};
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Run run;
  const QByteArrayView bytes(reinterpret_cast<const char*>(data), qsizetype(size));
  std::optional<QString> utf8 = text::LinePieces::strictUtf8(bytes);
  run.reader.storeInDB(utf8 ? *utf8 : text::LinePieces::decodeAll(bytes));
  // Keeps the archive small over millions of inputs.
  if (run.counters.storedCount > 1000) {
    run.archive.exec(
        QStringLiteral("DELETE FROM email; DELETE FROM attachments; DELETE FROM tags"));
    run.counters.storedCount = 0;
  }
  return 0;
}
