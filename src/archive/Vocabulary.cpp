#include "archive/Vocabulary.h"

#include <sqlite3.h>

#include <QStringList>

#include "archive/GramTokenizer.h"
#include "archive/PreparedStatement.h"

namespace quillery::archive {
namespace {

// At most this many grams of a run are looked up: more narrow little further.
constexpr int kMostGrams = 12;
// The words that the grams name are read up to this many; beyond, the run narrows nothing.
constexpr int kMostRead = 20000;

// The grams of the key ANDed as an FTS5 query, spread over the key when there are many.
QString gramQuery(const QByteArray& key) {
  const QList<QByteArray> grams = GramTokenizer::likeGrams(QString::fromUtf8(key));
  QStringList terms;
  const qsizetype n = grams.size();
  const qsizetype take = std::min<qsizetype>(n, kMostGrams);
  for (qsizetype k = 0; k < take; ++k) {
    const qsizetype i = take == 1 ? 0 : k * (n - 1) / (take - 1);
    terms.append(QLatin1Char('"') + QString::fromUtf8(grams.at(i)) + QLatin1Char('"'));
  }
  return terms.join(QStringLiteral(" AND "));
}

}  // namespace

QStringList Vocabulary::schema() {
  return {QStringLiteral("CREATE TABLE words(id INTEGER PRIMARY KEY,word TEXT UNIQUE)"),
          QStringLiteral("CREATE VIRTUAL TABLE quillery_word_grams USING fts5(w,content='',"
                         "detail=none,columnsize=0,tokenize='%1')")
              .arg(QLatin1String(GramTokenizer::kName))};
}

Vocabulary::Vocabulary(sqlite3* connection)
    : connection_(connection),
      find_(std::make_unique<PreparedStatement>(
          connection, QStringLiteral("SELECT 1 FROM words WHERE word=?1"))),
      insert_(std::make_unique<PreparedStatement>(
          connection, QStringLiteral("INSERT INTO words(word) VALUES(?1)"))),
      insertGrams_(std::make_unique<PreparedStatement>(
          connection, QStringLiteral("INSERT INTO quillery_word_grams(rowid,w) VALUES(?1,?2)"))) {}

Vocabulary::~Vocabulary() = default;

bool Vocabulary::ok() const {
  return find_->ok() && insert_->ok() && insertGrams_->ok();
}

bool Vocabulary::addFresh(WordTokenizer::Seen& seen) {
  for (const std::string& word : seen.fresh) {
    if (!add(word))
      return false;
  }
  seen.fresh.clear();
  return true;
}

bool Vocabulary::add(const std::string& word) {
  const QByteArrayView text(word.data(), qsizetype(word.size()));
  find_->reset();
  find_->bindView(1, text);
  const bool known = find_->step();
  find_->reset();
  if (known || find_->error() != SQLITE_OK)
    return known;
  // Ids in ascending order: FTS5 writes out what it has collected at a lower rowid.
  insert_->reset();
  insert_->bindView(1, text);
  insert_->step();
  bool ok = insert_->error() == SQLITE_OK;
  insert_->reset();
  insertGrams_->reset();
  insertGrams_->bind(1, sqlite3_last_insert_rowid(connection_));
  insertGrams_->bindView(2, text);
  insertGrams_->step();
  ok = ok && insertGrams_->error() == SQLITE_OK;
  insertGrams_->reset();
  return ok;
}

bool Vocabulary::empty() {
  return sqlite3_exec(connection_,
                      "DELETE FROM words;INSERT INTO quillery_word_grams(quillery_word_grams) "
                      "VALUES('delete-all')",
                      nullptr, nullptr, nullptr) == SQLITE_OK;
}

std::optional<QList<QByteArray>> Vocabulary::holding(const QByteArray& run) {
  PreparedStatement words(connection_,
                          QStringLiteral("SELECT word FROM words WHERE id IN (SELECT rowid FROM "
                                         "quillery_word_grams WHERE quillery_word_grams MATCH ?1 "
                                         "LIMIT ?2)"));
  words.bind(1, gramQuery(WordTokenizer::lookupKey(run)).toUtf8());
  words.bind(2, kMostRead);
  QList<QByteArray> held;
  int read = 0;
  while (words.step()) {
    ++read;
    if (WordTokenizer::mayHold(words.view(0), run)) {
      if (held.size() == kMostWords)
        return std::nullopt;
      held.append(words.bytes(0));
    }
  }
  if (words.error() != SQLITE_OK || read >= kMostRead)
    return std::nullopt;
  return held;
}

}  // namespace quillery::archive
