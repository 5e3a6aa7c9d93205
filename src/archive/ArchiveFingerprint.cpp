#include "archive/ArchiveFingerprint.h"

#include <sqlite3.h>

#include <cstdint>

#include "archive/PreparedStatement.h"

namespace quillery::archive {
namespace {

// How many of the newest messages the identity hashes (their headers: a body may take many
// pages to read).
constexpr int kHashedMessages = 8;

long long bigEndian(const unsigned char* bytes) {
  return (static_cast<long long>(bytes[0]) << 24) | (bytes[1] << 16) | (bytes[2] << 8) | bytes[3];
}

void hashInto(std::uint64_t& hash, const QByteArray& bytes, bool null) {
  // FNV-1a, with the length and a marker for NULL so that fields cannot run into each other.
  const auto mix = [&hash](unsigned char byte) {
    hash ^= byte;
    hash *= 0x100000001b3ull;
  };
  mix(null ? 1 : 2);
  for (int shift = 0; shift < 32; shift += 8)
    mix((std::uint32_t(bytes.size()) >> shift) & 0xff);
  for (const char c : bytes)
    mix(static_cast<unsigned char>(c));
}

// The lowest and highest id and the hash of the newest messages, as "min:max:hash".
QString messageIdentity(sqlite3* connection, ArchiveFingerprint& fingerprint, bool& ok) {
  // Two subqueries: min() and max() together in one would read the whole table.
  PreparedStatement range(connection, QStringLiteral("SELECT (SELECT min(id) FROM main.email),"
                                                     "(SELECT max(id) FROM main.email)"));
  ok = range.step();
  if (!ok)
    return {};
  fingerprint.hasMessages = !range.isNull(1);
  fingerprint.lowestId = range.integer(0);
  fingerprint.highestId = range.integer(1);
  QString identity =
      QString::fromLatin1(range.bytes(0)) + QLatin1Char(':') + QString::fromLatin1(range.bytes(1));
  PreparedStatement newest(
      connection, QStringLiteral("SELECT id,date_fld,from_fld,to_fld,subj_fld FROM main.email "
                                 "ORDER BY id DESC LIMIT %1")
                      .arg(kHashedMessages));
  std::uint64_t hash = 0xcbf29ce484222325ull;
  while (newest.step()) {
    for (int column = 0; column < 5; ++column)
      hashInto(hash, newest.bytes(column), newest.isNull(column));
  }
  ok = newest.error() == SQLITE_OK;
  return identity + QLatin1Char(':') + QString::number(hash, 16);
}

}  // namespace

ArchiveFingerprint ArchiveFingerprint::read(sqlite3* connection) {
  ArchiveFingerprint fingerprint;
  bool ok = false;
  // The messages first: reading them takes the archive's read lock, under which the header
  // read next cannot change.
  fingerprint.identity = messageIdentity(connection, fingerprint, ok);
  sqlite3_file* file = nullptr;
  if (!ok ||
      sqlite3_file_control(connection, "main", SQLITE_FCNTL_FILE_POINTER, &file) != SQLITE_OK ||
      file == nullptr || file->pMethods == nullptr)
    return fingerprint;
  unsigned char header[100] = {};
  if (file->pMethods->xRead(file, header, sizeof header, 0) != SQLITE_OK)
    return fingerprint;
  fingerprint.writeAheadLog = header[18] == 2 || header[19] == 2;
  fingerprint.counter = bigEndian(header + 24);
  fingerprint.pages = bigEndian(header + 28);
  fingerprint.valid = !fingerprint.writeAheadLog;
  return fingerprint;
}

}  // namespace quillery::archive
