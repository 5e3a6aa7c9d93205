// The search subsystem's user actions timed on a real archive, through the classes the
// window uses:
//
//   search-bench ARCHIVE [ROUNDS] [--searches-only] [body:WORD | subject:WORD ...]
//   search-bench ARCHIVE --browse
//
// - a search on each word in the message text (body:) or the subject (subject:), end to end
//   as the search button runs it (reopening the archive, building the statement, listing the
//   hits with their tag markers and counts), through the search index, and beside it the
//   same statement run as it stands (the plain statement), whose hits must be the same;
// - showing a selected message with ten attachment links in the real message view
//   (offscreen), from the selection to the links under the pointing hand;
// - tagging 1,000 selected messages;
// - deleting 10,000 listed messages from the archive.
// Tagging and deletion work on a copy of ARCHIVE, which is left as it was. Each figure is
// printed with its target; the search and the message view are repeated ROUNDS times (5 by
// default) and their first and median times given. With --browse only Browse runs: listing
// the whole archive, its time, the heap bytes the list holds per row and the peak resident
// memory of the process (run it alone, so that nothing else has grown the process first).
// With --searches-only the message view, tagging and deletion are left out (they copy the
// archive). A search index that is not current is brought up to date before anything is timed.
#include <malloc.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "app/TextViewWithLinks.h"
#include "archive/Archive.h"
#include "archive/Statements.h"
#include "platform/Pasteboard.h"
#include "platform/Workspace.h"
#include "platform/qt/QtFiles.h"
#include "search/CategoryList.h"
#include "search/Deletion.h"
#include "search/EmailSearch.h"
#include "search/MessageView.h"
#include "search/ResultList.h"
#include "search/SearchQueryBuilder.h"
#include "search/Tagging.h"
#include "support/BenchPorts.h"

namespace {

using namespace quillery;

// Ports that answer every question with its default button and show nothing.
class Quiet : public bench::BenchDialogs,
              public bench::SilentProgress,
              public platform::Workspace,
              public platform::Pasteboard {
 public:
  bool openFile(const QString&) override { return false; }
  bool openUrl(const QUrl&) override { return false; }
  void setText(const QString&) override {}
  QString text() const override { return {}; }
};

// The objects the window holds, on one archive file.
struct Session {
  explicit Session(const QString& file) : path(file) {}
  QString path;
  Quiet quiet;
  platform::QtFiles files;
  archive::Archive archive{quiet, files};
  search::ResultList list{archive, quiet, quiet};
  search::SearchQueryBuilder builder{archive, quiet, quiet};
  search::EmailSearch search{archive, builder, list, quiet};

  // Lists the messages the condition names, as a search would.
  void listWhere(const QString& condition) {
    archive.openDB(path);
    archive.sqlText = archive::listStatement(condition);
    list.retrieve(path);
  }
};

// Wall-clock and processor time of one run of an action. The machine may be shared: the
// processor time says what the action itself costs.
struct Clock {
  Clock() : cpuStart(cpuMs()) { wall.start(); }
  static double cpuMs() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e3 + double(t.tv_nsec) / 1e6;
  }
  std::pair<double, double> elapsed() const {
    return {double(wall.nsecsElapsed()) / 1e6, cpuMs() - cpuStart};
  }
  QElapsedTimer wall;
  double cpuStart;
};

using Times = QList<std::pair<double, double>>;

double median(QList<double> values) {
  std::sort(values.begin(), values.end());
  return values.at(values.size() / 2);
}

void report(const char* what, const Times& times, double target, const QString& detail) {
  QList<double> wall, cpu;
  for (const auto& [w, c] : times) {
    wall.append(w);
    cpu.append(c);
  }
  const QString goal = target > 0 ? QStringLiteral("(target <= %1 ms) ").arg(target) : QString();
  std::printf("%-52s first %7.1f ms, median %7.1f ms, processor %7.1f ms %s%s\n", what,
              wall.first(), median(wall), median(cpu), qPrintable(goal), qPrintable(detail));
}

// The ids the list shows, in display order.
QStringList listedIds(const search::ResultList& list) {
  QStringList ids;
  for (int row = 0; row < list.emailRows.size(); ++row)
    ids.append(QString::number(list.rowAt(row).emailID()));
  return ids;
}

// A search on "body:WORD" or "subject:WORD", through the index and as the plain statement.
void searchWord(const QString& path, const QString& field, int rounds) {
  Session s(path);
  search::SearchForm form;
  const bool subject = field.startsWith(QLatin1String("subject:"));
  const QString word = field.section(QLatin1Char(':'), 1);
  form.keyWords[subject ? search::SearchForm::Subject : search::SearchForm::Body] = word;
  Times indexed;
  Times plain;
  QStringList indexedIds;
  QStringList plainIds;
  for (int round = 0; round < rounds; ++round) {
    Clock clock;
    s.search.retrieveEmails(form, path);
    indexed.append(clock.elapsed());
    indexedIds = listedIds(s.list);
    // The statement as it stands, listed by the same list without the index.
    clock = Clock();
    s.builder.makeSearchSQL(form, path);
    s.archive.sqlText = s.builder.statement();
    s.list.retrieve(path);
    plain.append(clock.elapsed());
    plainIds = listedIds(s.list);
  }
  const QString what = QStringLiteral("%1 '%2'").arg(subject ? "subject" : "body", word);
  report(qPrintable(what + QStringLiteral(" through the index")), indexed, 50,
         QStringLiteral("(%1 hits%2)")
             .arg(indexedIds.size())
             .arg(indexedIds == plainIds ? ", the same as plain" : ", NOT THE SAME AS PLAIN"));
  report(qPrintable(what + QStringLiteral(" as the plain statement")), plain, 0, QString());
}

// Lists the whole archive as Browse does and says what the list costs.
void browse(const QString& path) {
  Session s(path);
  search::SearchForm form;
  const std::size_t heapBefore = mallinfo2().uordblks;
  const Clock clock;
  s.search.browseDatabase(form, path);
  const auto [wall, cpu] = clock.elapsed();
  const std::size_t heapAfter = mallinfo2().uordblks;
  QFile status(QStringLiteral("/proc/self/status"));
  status.open(QIODevice::ReadOnly);
  const QString peak = QString::fromLatin1(status.readAll())
                           .section(QLatin1String("VmHWM:"), 1)
                           .section(QLatin1Char('\n'), 0, 0)
                           .simplified();
  const int rows = s.list.listCount;
  std::printf(
      "Browse: %d rows in %.0f ms (processor %.0f ms), %.0f heap bytes per listed row, "
      "peak resident %s\n",
      rows, wall, cpu, rows ? double(heapAfter - heapBefore) / rows : 0.0, qPrintable(peak));
}

// Brings the archive's search index up to date, untimed.
void prepareIndex(const QString& path) {
  Session s(path);
  s.archive.openDB(path);
  const Clock clock;
  if (s.archive.searchIndex().needsBuilding()) {
    s.archive.searchIndex().build(s.quiet);
    std::printf("search index brought up to date in %.1f s\n", clock.elapsed().first / 1000);
  }
}

// Adds a message whose text lists ten attachments, each stored as its own row.
int addTenAttachmentMessage(archive::Archive& archive) {
  QString body = QStringLiteral("Here are the ten files.\n\nATTACHMENTS:\n");
  for (int i = 0; i < 10; ++i)
    body += QStringLiteral("report-%1.pdf\n").arg(i);
  archive.exec(QStringLiteral("INSERT INTO email VALUES(NULL,'Bench <b@example.com>',"
                              "'me@example.com','Ten files','2030-01-01 00:00:00','INBOX',"
                              "'b@example.com','%1',10)")
                   .arg(body));
  const int id = int(archive.lastInsertRowId());
  const QString data = QString::fromLatin1(QByteArray(60000, 'x').toBase64());
  for (int i = 0; i < 10; ++i)
    archive.exec(QStringLiteral("INSERT INTO attachments VALUES(%1,'application/pdf',"
                                "'report-%2.pdf',1,'%3')")
                     .arg(id)
                     .arg(i)
                     .arg(data));
  return id;
}

void showTenLinks(const QString& path, int rounds) {
  Session s(path);
  s.archive.openDB(path);
  const int id = addTenAttachmentMessage(s.archive);
  s.listWhere(QStringLiteral(" WHERE id=%1").arg(id));
  search::MessageView view(s.archive, s.list, s.quiet, s.quiet, s.quiet);
  view.setTempDir(QDir::tempPath());
  app::TextViewWithLinks text;
  text.resize(900, 500);
  text.show();
  QObject::connect(&view, &search::MessageView::bodyTextChanged, &text,
                   &app::TextViewWithLinks::showMessageText);
  Times times;
  for (int round = 0; round < rounds; ++round) {
    const Clock clock;
    view.tableViewSelectionDidChange(0);
    text.repaint();
    times.append(clock.elapsed());
  }
  report("showing a message with ten attachment links", times, 30,
         QStringLiteral("(%1 links)").arg(view.shown().links.size()));
}

void tagThousand(const QString& path) {
  Session s(path);
  s.listWhere(QStringLiteral(" ORDER BY id LIMIT 1000"));
  search::CategoryList categories(s.archive);
  search::Tagging tagging(s.archive, s.list, categories, s.quiet, s.quiet);
  QList<int> rows;
  for (int row = 0; row < s.list.emailRows.size(); ++row)
    rows.append(row);
  const Clock clock;
  tagging.addTags({QStringLiteral("Bench"), QStringLiteral("fast"), QStringLiteral("n"),
                   QStringLiteral("High")},
                  rows);
  report("tagging the selected messages", {clock.elapsed()}, 1000,
         QStringLiteral("(%1 messages)").arg(rows.size()));
}

void deleteTenThousand(const QString& path) {
  Session s(path);
  s.listWhere(QStringLiteral(" ORDER BY id LIMIT 10000"));
  search::Deletion deletion(s.archive, s.list, s.quiet, s.quiet);
  const int listed = s.list.listCount;
  const Clock clock;
  deletion.deleteAll();
  report("deleting the listed messages", {clock.elapsed()}, 5000,
         QStringLiteral("(%1 messages; %2)").arg(listed).arg(s.list.dbCountText()));
}

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  const QStringList args = app.arguments().mid(1);
  if (args.isEmpty() || !QFile::exists(args.first())) {
    std::fprintf(stderr,
                 "usage: search-bench ARCHIVE [ROUNDS] [body:WORD|subject:WORD...]\n"
                 "       search-bench ARCHIVE --browse\n");
    return 2;
  }
  const QString archive = args.at(0);
  if (args.value(1) == QLatin1String("--browse")) {
    browse(archive);
    return 0;
  }
  prepareIndex(archive);
  const int rounds = std::max(1, args.value(1, QStringLiteral("5")).toInt());
  QStringList fields = args.mid(2);
  const bool searchesOnly = fields.removeAll(QStringLiteral("--searches-only")) > 0;
  if (fields.isEmpty())
    fields = {QStringLiteral("body:kitchen"), QStringLiteral("body:zeppelin")};
  for (const QString& field : fields)
    searchWord(archive, field, rounds);
  if (searchesOnly)
    return 0;

  QTemporaryDir work;
  const QString copy = work.filePath(QStringLiteral("copy.db"));
  for (const auto& pass : {&tagThousand, &deleteTenThousand}) {
    QFile::remove(copy);
    if (!QFile::copy(archive, copy))
      return 1;
    pass(copy);
  }
  QFile::remove(copy);
  QFile::copy(archive, copy);
  showTenLinks(copy, rounds);
  return 0;
}
