#include "search/IndexedSearch.h"

#include <sqlite3.h>

#include "archive/Archive.h"
#include "archive/CandidateTable.h"
#include "archive/PreparedStatement.h"
#include "archive/SearchIndex.h"
#include "search/SearchPrefilter.h"

namespace quillery::search {
namespace {

const QString kSort = QStringLiteral("USE TEMP B-TREE FOR ORDER BY");
const QString kScanEmail = QStringLiteral("SCAN email");
const QString kScanTags = QStringLiteral("SCAN tags");
const QString kEmailById = QStringLiteral("SEARCH email USING INTEGER PRIMARY KEY (rowid=?)");
const QString kTagsById = QStringLiteral("SEARCH tags USING INTEGER PRIMARY KEY (rowid=?)");
const QString kByDate = QStringLiteral("email USING INDEX email_date_idx");
// The date index as the archive makes it; one made otherwise may order its rows otherwise.
const QByteArray kDateIndexSql = "CREATE INDEX email_date_idx ON email(date_fld)";
// The share of the messages above which the candidates are not worth narrowing to.
constexpr double kMostMessages = 0.6;

}  // namespace

IndexedSearch::IndexedSearch(archive::Archive& archive) : archive_(archive) {}

QString IndexedSearch::statementFor(const QString& statement) {
  archive::SearchIndex& index = archive_.searchIndex();
  if (!archive_.isOpen() || !index.usable())
    return statement;
  const QStringList names = columnNames();
  if (names.isEmpty())
    return statement;
  const int likeLimit =
      sqlite3_limit(archive_.archiveConnection, SQLITE_LIMIT_LIKE_PATTERN_LENGTH, -1);
  const std::optional<SearchPrefilter> prefilter =
      SearchPrefilter::read(statement, names, likeLimit,
                            [&index](const QByteArray& run) { return index.wordsHolding(run); });
  if (!prefilter || prefilter->candidates.isEmpty())
    return statement;
  const QString order = tieOrder(statement);
  if (order.isEmpty())
    return statement;
  const std::optional<std::size_t> count = index.prepareCandidates(prefilter->candidates);
  // Candidates among most of the messages save nothing over reading them all.
  if (!count || double(*count) > kMostMessages * double(index.messageSpan()))
    return statement;
  QString narrowed = QStringLiteral("email.id IN (SELECT id FROM %1)")
                         .arg(QLatin1String(archive::CandidateTable::kName));
  // Messages past the built part are all candidates until the index reaches them.
  if (index.state() == archive::SearchIndex::State::Building)
    narrowed = QStringLiteral("(%1 OR email.id>%2)").arg(narrowed).arg(index.builtUpTo());
  const QString& select =
      prefilter->withTags ? SearchPrefilter::kSelectEmailTags : SearchPrefilter::kSelectEmail;
  return select + QStringLiteral("WHERE (") + prefilter->condition + QStringLiteral(") AND ") +
         narrowed + QStringLiteral(" ORDER BY UPPER(date_fld),") + order;
}

QStringList IndexedSearch::columnNames() {
  // A temporary table or view named email or tags would stand in for the archive's, and a
  // table named like the candidates for them.
  archive::PreparedStatement shadowed(
      archive_.archiveConnection,
      QStringLiteral("SELECT (SELECT count(*) FROM temp.sqlite_master WHERE lower(name) IN "
                     "('email','tags','quillery_candidates'))+(SELECT count(*) FROM "
                     "main.sqlite_master WHERE lower(name)='quillery_candidates')"));
  if (!shadowed.step() || shadowed.integer(0) != 0)
    return {};
  archive::PreparedStatement columns(
      archive_.archiveConnection,
      QStringLiteral("SELECT name FROM pragma_table_info('email','main') UNION ALL "
                     "SELECT name FROM pragma_table_info('tags','main')"));
  QStringList names;
  while (columns.step())
    names.append(QString::fromUtf8(columns.bytes(0)));
  return columns.error() == SQLITE_OK ? names : QStringList();
}

QString IndexedSearch::tieOrder(const QString& statement) {
  archive::PreparedStatement plan(archive_.archiveConnection,
                                  QStringLiteral("EXPLAIN QUERY PLAN ") + statement);
  QStringList loops;
  while (plan.step())
    loops.append(QString::fromUtf8(plan.bytes(3)));
  if (plan.error() != SQLITE_OK || loops.isEmpty() || loops.takeLast() != kSort)
    return {};
  // Reading email or tags in id order, with at most one row of the other table per row.
  if (loops == QStringList{kScanEmail} || loops == QStringList{kScanEmail, kTagsById} ||
      loops == QStringList{kScanTags, kEmailById})
    return QStringLiteral("email.id");
  const bool byDate =
      loops.first().startsWith(QStringLiteral("SEARCH ") + kByDate + QStringLiteral(" (")) ||
      loops.first() == QStringLiteral("SCAN ") + kByDate;
  if (!byDate || (loops.size() == 2 && loops.last() != kTagsById) || loops.size() > 2)
    return {};
  archive::PreparedStatement index(
      archive_.archiveConnection,
      QStringLiteral("SELECT sql FROM main.sqlite_master WHERE type='index' AND "
                     "name='email_date_idx'"));
  if (!index.step() || index.bytes(0) != kDateIndexSql)
    return {};
  return QStringLiteral("date_fld,email.id");
}

}  // namespace quillery::search
