#include "search/ResultList.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include <sqlite3.h>

#include "archive/Archive.h"
#include "archive/PreparedStatement.h"
#include "archive/RowCallbacks.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/IndexedSearch.h"
#include "search/SqlErrorReport.h"

namespace quillery::search {
namespace {

using Comparison = int (Emailrow::*)(const Emailrow&) const;

// The comparison that a column identifier names, "<identifier>Comparison".
Comparison comparisonFor(const QString& identifier) {
  static constexpr struct {
    const char* identifier;
    Comparison comparison;
  } kComparisons[] = {
      {"emailID", &Emailrow::emailIDComparison},
      {"emailAtch", &Emailrow::emailAtchComparison},
      {"emailDate", &Emailrow::emailDateComparison},
      {"emailFrom", &Emailrow::emailFromComparison},
      {"emailTo", &Emailrow::emailToComparison},
      {"emailSubject", &Emailrow::emailSubjectComparison},
      {"emailMailbox", &Emailrow::emailMailboxComparison},
  };
  for (const auto& entry : kComparisons) {
    if (identifier == QLatin1String(entry.identifier))
      return entry.comparison;
  }
  return nullptr;
}

// A column the way C's atoi reads it, 0 for NULL; out-of-range values are clamped.
int cInt(const char* text) {
  if (text == nullptr)
    return 0;
  const long value = std::strtol(text, nullptr, 10);
  return int(std::clamp<long>(value, INT_MIN, INT_MAX));
}

// The id column, read as a decimal floating-point text and truncated.
int idFromText(const char* text) {
  if (text == nullptr)
    return 0;
  const double value = std::strtod(text, nullptr);
  if (std::isnan(value))
    return 0;
  return int(std::clamp<double>(value, INT_MIN, INT_MAX));
}

}  // namespace

const QStringList ResultList::kColumnIdentifiers = {
    QStringLiteral("emailID"),     QStringLiteral("emailAtch"), QStringLiteral("emailDate"),
    QStringLiteral("emailFrom"),   QStringLiteral("emailTo"),   QStringLiteral("emailSubject"),
    QStringLiteral("emailMailbox")};

ResultList::ResultList(archive::Archive& archive, platform::Dialogs& dialogs,
                       platform::Progress& progress, QObject* parent)
    : QObject(parent), archive_(archive), dialogs_(dialogs), progress_(progress) {}

void ResultList::retrieve(const QString& dbPath, IndexedSearch* indexed) {
  listedArchivePath_ = dbPath;
  Q_EMIT listWindowClosed();
  Q_EMIT sqlPanelClosed();
  // The table stays reset until the new rows are in: no view reads them half made.
  Q_EMIT listAboutToReset();
  emptyRows();
  Q_EMIT countsChanged(dbCountText_, listCountText_);
  Q_EMIT messageViewCleared();
  Q_EMIT listWindowTitleChanged(QStringLiteral("retrieving email from database..."));
  Q_EMIT listWindowShown();
  progress_.open(QStringLiteral("Retrieving..."));
  onlyAttachments = onlyAttachCheck ? 1 : 0;

  reportOnStderr(archive_.exec(QStringLiteral("BEGIN TRANSACTION")));
  const archive::ExecResult result = runListStatement(indexed);
  taggedIds_ = {};
  if (!result.ok()) {
    // Rows read before the statement failed are not shown either.
    archive_.idList.clear();
    emailRows.clear();
    listCount = 0;
    Q_EMIT listReset();
    Q_EMIT listWindowClosed();
    archive_.close();
    progress_.close();
    dialogs_.critical(QString(), QStringLiteral("SQL Error: ") + result.error);
    return;
  }
  reportOnStderr(archive_.exec(QStringLiteral("COMMIT TRANSACTION")));
  Q_EMIT listReset();
  progress_.close();
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::Count);
  showCounts();
  Q_EMIT listWindowTitleChanged(QStringLiteral("done retrieving email from ") + dbPath);
}

archive::ExecResult ResultList::runListStatement(IndexedSearch* indexed) {
  const QString& statement = archive_.sqlText;
  const QString run = indexed ? indexed->statementFor(statement) : statement;
  readTaggedIds(run);
  archive::ExecResult result = archive_.exec(run, &ResultList::listRowCallback, this);
  if (result.ok() || run == statement)
    return result;
  // The index failed: what it listed goes, and the statement runs as it stands.
  archive_.idList.clear();
  emailRows.clear();
  listCount = 0;
  readTaggedIds(statement);
  return archive_.exec(statement, &ResultList::listRowCallback, this);
}

void ResultList::readTaggedIds(const QString& statement) {
  taggedIds_.clear();
  taggedIdsRead_ = false;
  // Only a statement that runs alone is sure not to change the tags while its rows come.
  sqlite3* connection = archive_.archiveConnection;
  const QByteArray utf8 = statement.toUtf8();
  sqlite3_stmt* compiled = nullptr;
  const char* rest = nullptr;
  const int code =
      sqlite3_prepare_v2(connection, utf8.constData(), int(utf8.size()) + 1, &compiled, &rest);
  sqlite3_finalize(compiled);
  if (code != SQLITE_OK || compiled == nullptr || rest == nullptr)
    return;
  for (; *rest != '\0'; ++rest) {
    if (!std::isspace(static_cast<unsigned char>(*rest)))
      return;
  }
  archive::PreparedStatement ids(connection, QStringLiteral("SELECT id FROM tags ORDER BY id"));
  while (ids.step())
    taggedIds_.push_back(ids.integer(0));
  taggedIdsRead_ = ids.ok() && ids.error() == SQLITE_OK;
  if (!taggedIdsRead_)
    taggedIds_.clear();
}

bool ResultList::tagged(int id, bool& failed) {
  failed = false;
  if (taggedIdsRead_)
    return std::binary_search(taggedIds_.begin(), taggedIds_.end(), static_cast<long long>(id));
  const archive::ExecResult tags =
      archive_.exec(QStringLiteral("SELECT count(id) FROM tags WHERE tags.id=%1").arg(id),
                    archive::singleValueCallback, &archive_);
  failed = !reportOnStderr(tags);
  return !failed && archive_.sqlResult.toInt() != 0;
}

int ResultList::listRowCallback(void* context, int columns, char** values, char** /*names*/) {
  auto* list = static_cast<ResultList*>(context);
  archive::Archive& archive = list->archive_;
  // A statement typed in the SQL panel may bring fewer columns; missing ones read as NULL.
  const auto column = [columns, values](int i) -> const char* {
    return i < columns ? values[i] : nullptr;
  };
  const int id = idFromText(column(0));
  const int numAttach = cInt(column(6));
  if (list->onlyAttachments != 0 && numAttach == 0)
    return 0;

  bool failed = false;
  const bool isTagged = list->tagged(id, failed);
  if (failed)
    return 0;
  list->emailRows.append(Emailrow::fromColumns(id, numAttach, column(1), isTagged, column(2),
                                               column(3), column(4), column(5)));
  ++list->listCount;
  // "%s" of a NULL id prints "(null)", as the id callback writes it.
  archive.idList.append(column(0) ? column(0) : "(null)");
  list->progress_.doProgressCount(list->listCount, 10);
  return 0;
}

void ResultList::emptyRows() {
  archive_.idList.clear();
  emailRows.clear();
  dbCountText_.clear();
  listCountText_.clear();
  listCount = 0;
}

void ResultList::clear() {
  Q_EMIT listAboutToReset();
  emptyRows();
  Q_EMIT listReset();
  Q_EMIT countsChanged(dbCountText_, listCountText_);
}

void ResultList::startRows(const QString& dbPath) {
  listedArchivePath_ = dbPath;
  Q_EMIT listAboutToReset();
  emptyRows();
  Q_EMIT countsChanged(dbCountText_, listCountText_);
}

void ResultList::appendRow(Emailrow row) {
  archive_.idList.append(row.emailID());
  emailRows.append(std::move(row));
  ++listCount;
}

void ResultList::finishRows() {
  Q_EMIT fontReapplied();
  Q_EMIT listReset();
  showCounts();
}

void ResultList::removeAll() {
  Q_EMIT listAboutToReset();
  emptyRows();
  Q_EMIT listReset();
  showCounts();
}

bool ResultList::reopenListedArchive() {
  if (archive_.isOpen())
    return true;
  if (listedArchivePath_.isEmpty())
    return false;
  return archive_.openForAction(listedArchivePath_);
}

void ResultList::replaceRow(int arrayIndex, Emailrow row) {
  if (arrayIndex >= 0 && arrayIndex < emailRows.size())
    emailRows[arrayIndex] = std::move(row);
}

int ResultList::arrayIndex(int displayRow) const {
  return sortDescending ? int(emailRows.size()) - displayRow - 1 : displayRow;
}

void ResultList::clickColumn(const QString& identifier) {
  const Comparison comparison = comparisonFor(identifier);
  if (comparison == nullptr)
    return;
  Q_EMIT listAboutToReset();
  if (identifier == sortColumn) {
    // The same column again only turns the display round; the rows are not sorted anew.
    sortDescending = !sortDescending;
  } else {
    // Another column sorts ascending and keeps the direction shown, reversed or not.
    sortColumn = identifier;
    std::stable_sort(
        emailRows.begin(), emailRows.end(),
        [comparison](const Emailrow& a, const Emailrow& b) { return (a.*comparison)(b) < 0; });
  }
  Q_EMIT sortIndicatorChanged(identifier, sortDescending);
  Q_EMIT listReset();
}

void ResultList::deleteFromList(const QList<int>& selectedDisplayRows) {
  // Display row d shows array index d, or count - 1 - d while the list is reversed; the
  // rows are marked first and taken out in one pass, so removing thousands stays linear.
  const int shown = int(emailRows.size());
  QList<bool> removed(shown, false);
  for (const int row : selectedDisplayRows) {
    if (row >= 0 && row < shown)
      removed[arrayIndex(row)] = true;
  }
  Q_EMIT listAboutToReset();
  qsizetype kept = 0;
  for (qsizetype i = 0; i < shown; ++i) {
    if (!removed.at(i)) {
      if (kept != i)
        emailRows[kept] = std::move(emailRows[i]);
      ++kept;
    }
  }
  emailRows.erase(emailRows.begin() + kept, emailRows.end());
  listCount = int(emailRows.size());
  showCounts();
  Q_EMIT fontReapplied();
  Q_EMIT listReset();
}

void ResultList::showCounts() {
  reportOnStderr(archive_.exec(QStringLiteral("SELECT count(id) FROM email"),
                               archive::singleValueCallback, &archive_));
  archive_.sqlResult += QLatin1String(" emails in the database.");
  dbCountText_ = archive_.sqlResult;
  listCountText_ = QString::number(listCount) + QStringLiteral(" emails in this list.");
  Q_EMIT countsChanged(dbCountText_, listCountText_);
}

}  // namespace quillery::search
