#include "archive/IndexFeeder.h"

#include <sqlite3.h>

#include <QString>
#include <algorithm>

#include "archive/IndexFile.h"
#include "archive/PreparedStatement.h"

namespace quillery::archive {

IndexFeeder::IndexFeeder(sqlite3* archive, IndexFile& file) : archive_(archive), file_(file) {}

IndexFeeder::~IndexFeeder() = default;

bool IndexFeeder::addMessages(std::vector<long long>& ids, std::size_t most) {
  if (ids.empty())
    return true;
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  if (!file_.inTransaction() && !file_.begin())
    return false;
  if (!readMessage_) {
    readMessage_ = std::make_unique<PreparedStatement>(
        archive_,
        QStringLiteral("SELECT body_fld,subj_fld,from_fld,to_fld FROM main.email WHERE id=?1"));
  }
  const std::size_t count = std::min(most, ids.size());
  bool ok = readMessage_->ok();
  for (std::size_t i = 0; ok && i < count; ++i) {
    readMessage_->reset();
    readMessage_->bind(1, ids[i]);
    if (readMessage_->step()) {
      const QByteArrayView texts[] = {readMessage_->view(0), readMessage_->view(1),
                                      readMessage_->view(2), readMessage_->view(3)};
      ok = file_.add(ids[i], texts);
    } else {
      ok = readMessage_->error() == SQLITE_OK;
    }
  }
  // Not left running: the archive's connection may commit or close next.
  if (readMessage_->ok())
    readMessage_->reset();
  if (ok)
    ids.erase(ids.begin(), ids.begin() + std::ptrdiff_t(count));
  return ok;
}

bool IndexFeeder::addAfter(long long after, int most, long long& last, int& count) {
  if (!file_.inTransaction() && !file_.begin())
    return false;
  PreparedStatement rows(archive_,
                         QStringLiteral("SELECT id,body_fld,subj_fld,from_fld,to_fld FROM "
                                        "main.email WHERE id>?1 ORDER BY id LIMIT ?2"));
  rows.bind(1, after);
  rows.bind(2, most);
  last = after;
  count = 0;
  bool ok = rows.ok();
  while (ok && rows.step()) {
    last = rows.integer(0);
    const QByteArrayView texts[] = {rows.view(1), rows.view(2), rows.view(3), rows.view(4)};
    ok = file_.add(last, texts);
    ++count;
  }
  return ok && rows.error() == SQLITE_OK;
}

}  // namespace quillery::archive
