// The store run's own side of storing, measured without the real parser: the real StoreRun,
// RecordReader, EmailStore and ResultList on a real archive file, with this same program
// standing in for domail behind /usr/bin/nice. The stand-in writes a generated message
// record and raw source per message, announces it and waits for "go for it", as domail does,
// so the pipes, the record files, the SQL and the final listing are all measured; only
// the parsing of mail files is not.
//
//   store-run-bench [MESSAGES] [WORK_FOLDER]
//
// Prints messages per second for a first pass into a new archive and a second pass over the
// same messages (each replaces its earlier copy), the per-message time of the messages
// 11,000-20,000 against 1,000-10,000, the peak resident memory, and the seconds that listing
// every stored message takes. Run it with two sizes to see whether memory grows with them.
#include <sys/resource.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMap>
#include <QTemporaryDir>
#include <cstdio>
#include <string>

#include "archive/Archive.h"
#include "archive/Statements.h"
#include "ingest/StoreRun.h"
#include "platform/qt/QtFiles.h"
#include "search/ResultList.h"
#include "support/BenchPorts.h"

namespace {

using namespace quillery;

constexpr char kToolVariable[] = "QUILLERY_BENCH_TOOL_MESSAGES";

// ---- the stand-in tool --------------------------------------------------------------------

std::string dateOf(int i) {
  const int day = i / 86400, second = i % 86400;
  char text[32];
  std::snprintf(text, sizeof text, "2019-%02d-%02d %02d:%02d:%02d", 1 + (day / 28) % 12,
                1 + day % 28, second / 3600, second / 60 % 60, second % 60);
  return text;
}

std::string bodyOf(int i) {
  std::string body;
  for (int line = 0; line < 24; ++line)
    body += "Line " + std::to_string(line) + " of message " + std::to_string(i) +
            ": the \"quarterly\" figures are in C:\\reports, as agreed.\n";
  return body;
}

std::string attachmentOf(int i) {
  std::string blob;
  for (int line = 0; line < 50; ++line)
    blob += std::string(76, char('A' + (i + line) % 26)) + "\n";
  return blob;
}

bool writeWhole(const std::string& path, const std::string& text) {
  FILE* file = std::fopen(path.c_str(), "wb");
  if (file == nullptr)
    return false;
  const bool ok = std::fwrite(text.data(), 1, text.size(), file) == text.size();
  return std::fclose(file) == 0 && ok;
}

bool awaitAnswer() {
  char answer[9];
  size_t got = 0;
  while (got < sizeof answer) {
    const ssize_t n = ::read(STDIN_FILENO, answer + got, sizeof answer - got);
    if (n <= 0)
      return false;
    got += size_t(n);
  }
  return true;
}

int runTool(const char* runLog, int messages) {
  std::string base = runLog;
  base.resize(base.size() - 4);  // ".log"
  for (int i = 0; i < messages; ++i) {
    const std::string subject = "Bench message " + std::to_string(i);
    const std::string head = "MAILBOX: bench.mbox\nFROM:Sender " + std::to_string(i % 500) + " <s" +
                             std::to_string(i % 500) +
                             "@example.com>\nTO:owner@example.org\n"
                             "SUBJECT:" +
                             subject + "\nDATE:" + dateOf(i) + "\nMAILTO:s@example.com\n";
    std::string record = head + "BODY:" + bodyOf(i) + "ENDOFBODY:\n";
    if (i % 5 == 2) {
      record += "ATTACH:\nTYPE:application/pdf\nFILENAME:report" + std::to_string(i) +
                ".pdf\nENCODING:base64\nBLOB:\n" + attachmentOf(i) +
                "ENDATTACH:\nATTACH:\nTYPE:text/html\nFILENAME:message.html\nENCODING:8bit\n"
                "BLOB:\n<p>" +
                bodyOf(i) + "</p>\nENDATTACH:\nENDATTACHMENTS:\n";
    }
    record += "ENDOFEMAIL:\n";
    const std::string raw = "RAW:\nFrom: Sender\nSubject: " + subject + "\n\n" + bodyOf(i) +
                            (i % 5 == 2 ? attachmentOf(i) : std::string()) + "ENDOFRAW:\n";
    if (!writeWhole(base + ".tmp", record) || !writeWhole(base + ".raw", raw))
      return 1;
    const std::string announcement = base + ".mbox\n" + subject;
    if (::write(STDOUT_FILENO, announcement.data(), announcement.size()) < 0 || !awaitAnswer())
      return 0;
  }
  return writeWhole(runLog, "PARSED: " + std::to_string(messages) + "\n") ? 0 : 1;
}

// ---- the measuring side -------------------------------------------------------------------

// Resident memory now, from /proc.
double residentMegabytes() {
  long pages = 0, resident = 0;
  if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(statm, "%ld %ld", &pages, &resident) != 2)
      resident = 0;
    std::fclose(statm);
  }
  return resident * double(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

// Notes the time and the resident memory at every thousandth message of the store's
// progress count; the listing at the end counts again and is left out.
class StampingProgress : public platform::Progress {
 public:
  void open(const QString&) override {}
  void setTitle(const QString&) override {}
  void showCount(const QString& text) override {
    const int count = text.toInt();
    if (count > 0 && count % 1000 == 0 && !stamps.contains(count)) {
      stamps.insert(count, clock.nsecsElapsed() / 1e9);
      resident.insert(count, residentMegabytes());
    }
  }
  void showItem(const QString&) override {}
  void setRunControlsVisible(bool, RunControls) override {}
  void close() override {}

  QElapsedTimer clock;
  QMap<int, double> stamps;
  QMap<int, double> resident;
};

void storePass(const char* name, const QString& dbPath, int messages) {
  bench::BenchDialogs dialogs;
  StampingProgress progress;
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  ingest::CurrentMessage message;
  ingest::StoreRunCounters counters;
  ingest::StoreRun run(archive, list, message, counters, dialogs, progress,
                       QCoreApplication::applicationFilePath());
  // Fresh counters, as a preparation leaves them; no confirmation to answer.
  ingest::StoreRequest request;
  request.dbPath = dbPath;
  request.switches = {false, true, true, false, true, false};
  request.mboxMode = true;
  request.mboxFiles = {QStringLiteral("generated.mbox")};
  QString summary;
  QEventLoop loop;
  QObject::connect(&run, &ingest::StoreRun::finished, &loop, [&](const QString& text) {
    summary = text;
    loop.quit();
  });
  const double selfBefore = bench::processorSeconds(RUSAGE_SELF);
  const double toolBefore = bench::processorSeconds(RUSAGE_CHILDREN);
  progress.clock.start();
  if (!run.start(request))
    return;
  loop.exec();
  const double seconds = progress.clock.nsecsElapsed() / 1e9;
  std::printf("%s pass: %d messages in %.2f s = %.0f messages/s, peak RSS %.1f MB\n", name,
              messages, seconds, messages / seconds, bench::peakMegabytes());
  const double self = bench::processorSeconds(RUSAGE_SELF) - selfBefore;
  const double tool = bench::processorSeconds(RUSAGE_CHILDREN) - toolBefore;
  std::printf("  processor time: %.0f us per message here, %.0f us in the stand-in tool\n",
              self / messages * 1e6, tool / messages * 1e6);
  const auto& t = progress.stamps;
  if (t.contains(1000) && t.contains(10000) && t.contains(11000) && t.contains(20000)) {
    const double first = (t[10000] - t[1000]) / 9000, second = (t[20000] - t[11000]) / 9000;
    std::printf("  per message: %.0f us in the first 10,000, %.0f us in the second: ratio %.2f\n",
                first * 1e6, second * 1e6, second / first);
  }
  if (!progress.resident.isEmpty())
    std::printf("  resident while storing: %.1f MB at message %d, %.1f MB at message %d\n",
                progress.resident.first(), progress.resident.firstKey(), progress.resident.last(),
                progress.resident.lastKey());
  std::printf("  %s\n", qPrintable(summary.section(QLatin1Char('\n'), 0, 3).replace('\n', ", ")));
}

void listPass(const QString& dbPath) {
  bench::BenchDialogs dialogs;
  StampingProgress progress;
  platform::QtFiles files;
  archive::Archive archive(dialogs, files);
  search::ResultList list(archive, dialogs, progress);
  archive.openDB(dbPath);
  archive.sqlText = archive::listAllStatement();
  QElapsedTimer clock;
  clock.start();
  list.retrieve(dbPath);
  std::printf("list: %d rows in %.3f s (%s)\n", list.listCount, clock.nsecsElapsed() / 1e9,
              qPrintable(list.dbCountText()));
}

}  // namespace

int main(int argc, char** argv) {
  if (const QByteArray tool = qgetenv(kToolVariable); !tool.isEmpty() && argc > 1)
    return runTool(argv[1], tool.toInt());
  QCoreApplication app(argc, argv);
  const int messages = argc > 1 ? QByteArray(argv[1]).toInt() : 20000;
  QTemporaryDir temporary;
  const QString work = argc > 2 ? QString::fromLocal8Bit(argv[2]) : temporary.path();
  const QString dbPath = QDir(work).filePath(QStringLiteral("bench.db"));
  for (const char* suffix : {"", ".storelog"})
    QFile::remove(dbPath + QLatin1String(suffix));
  qputenv(kToolVariable, QByteArray::number(messages));
  storePass("first", dbPath, messages);
  storePass("second", dbPath, messages);
  listPass(dbPath);
  return 0;
}
