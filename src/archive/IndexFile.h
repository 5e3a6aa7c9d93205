#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <memory>
#include <optional>
#include <vector>

#include "archive/ArchiveFingerprint.h"
#include "archive/WordTokenizer.h"

struct sqlite3;

namespace quillery::archive {

class PreparedStatement;
class Vocabulary;

// The search index's side file on a connection of its own, so that writing it never becomes
// part of the archive's transactions (FTS5 writes out what it has collected at every
// statement of a transaction it takes part in, which would cost a small segment per stored
// message). It holds one FTS5 table per searched column, named after the column with the
// prefix "quillery_", each giving every message's distinct words (WordTokenizer), the
// vocabulary of those words (Vocabulary), the ids of the messages whose words are still to be
// added, and a row of state.
//
// Any failure leaves the file as it was before the failing transaction; the caller then
// stops using the index.
class IndexFile {
 public:
  // The searched columns of the email table, in the order add() takes their texts.
  static constexpr int kColumns = 4;
  static const char* const kColumnNames[kColumns];
  // The FTS5 table of a searched column.
  static QString tableOf(const QString& column);

  // The state row: how far the index is built ("stale", "building" or "current"), the id up
  // to which messages are in it while building, the fingerprint of the archive it
  // describes, and the messages deleted or changed since it was last built.
  struct State {
    QByteArray state = "stale";
    long long builtUpTo = 0;
    ArchiveFingerprint fingerprint;
    long long dropped = 0;
  };

  IndexFile();
  ~IndexFile();
  IndexFile(const IndexFile&) = delete;
  IndexFile& operator=(const IndexFile&) = delete;

  // Opens the side file at path, making it when missing; a file of another layout or not a
  // database is made anew. False when it cannot be used.
  bool open(const QString& path);
  // Closes the file; a transaction still open is rolled back.
  void close();
  bool isOpen() const { return connection_ != nullptr; }
  // Whether the open file has been removed or renamed since it was opened.
  bool hasMoved() const;

  std::optional<State> readState();
  bool writeState(const State& state);

  // SQLite's count of the commits that other connections (another Quillery) have made to the
  // side file (PRAGMA data_version); it stays as it is for this connection's own commits. -1
  // when it cannot be read.
  long long dataVersion();

  bool begin();
  bool commit();
  void rollback();
  bool inTransaction() const;

  // Forgets every message's words and the vocabulary.
  bool empty();
  // Adds a message's words, and those new to the vocabulary to it: texts are the body,
  // subject, sender and recipient as UTF-8.
  bool add(long long id, const QByteArrayView (&texts)[kColumns]);
  // The words of the vocabulary that a message holding this run of a pattern may have given
  // (Vocabulary::holding); nothing when the run cannot narrow the messages.
  std::optional<QList<QByteArray>> wordsHolding(const QByteArray& run);
  // Runs a query of ids (of the FTS5 tables, or of the pending ones) and answers its ids in
  // ascending order; nothing when it fails.
  std::optional<std::vector<long long>> ids(const QString& query);
  // The ids of the messages whose words are still to be added, as writePending left them.
  std::optional<std::vector<long long>> pending() {
    return ids(QStringLiteral("SELECT id FROM pending"));
  }
  bool writePending(const std::vector<long long>& ids);

 private:
  // Ready; Foreign for a file that is no side file of this layout (to be made anew); Failed
  // for anything else.
  enum class Schema { Ready, Foreign, Failed };
  Schema makeSchema();
  bool run(const QString& sql);

  sqlite3* connection_ = nullptr;
  std::unique_ptr<PreparedStatement> inserts_[kColumns];
  std::unique_ptr<Vocabulary> vocabulary_;
  // The words the open file is known to hold, and its data version when that was last so.
  WordTokenizer::Seen seen_;
  long long seenVersion_ = -1;
};

}  // namespace quillery::archive
