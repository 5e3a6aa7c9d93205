#include "archive/TrigramTokenizer.h"

#include <sqlite3.h>

#include <cstdint>
#include <vector>

namespace quillery::archive {
namespace {

// SQLite's table for the lead byte of a multi-byte UTF-8 sequence.
constexpr unsigned char kUtf8Lead[] = {
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f,
    0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x1b, 0x1c, 0x1d, 0x1e, 0x1f,
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0a, 0x0b, 0x0c, 0x0d, 0x0e, 0x0f,
    0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x00, 0x01, 0x02, 0x03, 0x00, 0x01, 0x00, 0x00,
};

// The next code point, decoded exactly as LIKE decodes its operands, ASCII letters folded.
// LIKE stops at a NUL byte; the index reads on, which only adds triples.
std::uint32_t nextCodePoint(const unsigned char*& z, const unsigned char* end) {
  std::uint32_t c = *z++;
  if (c >= 0xc0) {
    c = kUtf8Lead[c - 0xc0];
    while (z != end && (*z & 0xc0) == 0x80)
      c = (c << 6) + (0x3f & *z++);
    if (c < 0x80 || (c & 0xFFFFF800) == 0xD800 || (c & 0xFFFFFFFE) == 0xFFFE)
      c = 0xFFFD;
  } else if (c >= 'A' && c <= 'Z') {
    c += 'a' - 'A';
  }
  return c;
}

bool isWordCharacter(std::uint32_t c) {
  return c >= 0x80 || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9');
}

std::uint64_t tripleHash(std::uint32_t a, std::uint32_t b, std::uint32_t c) {
  std::uint64_t x = (std::uint64_t(a) * 0x9E3779B97F4A7C15ull) ^ (std::uint64_t(b) << 21) ^
                    (std::uint64_t(c) * 0xC2B2AE3D27D4EB4Full);
  x ^= x >> 33;
  x *= 0xff51afd7ed558ccdull;
  x ^= x >> 33;
  x *= 0xc4ceb9fe1a85ec53ull;
  x ^= x >> 33;
  return x;
}

// A token carries 35 bits of the hash, seven to a byte with the high bit set: FTS5 keeps its
// terms as C strings, so no byte may be 0.
constexpr int kTokenBytes = 5;

// The word triples of a text, each handed to `take` with its hash.
template <typename Take>
void forEachTriple(const unsigned char* z, const unsigned char* end, Take take) {
  std::uint32_t first = 0;
  std::uint32_t second = 0;
  int have = 0;
  while (z != end) {
    const std::uint32_t c = nextCodePoint(z, end);
    if (have == 2 && isWordCharacter(first) && isWordCharacter(second) && isWordCharacter(c))
      take(tripleHash(first, second, c));
    first = second;
    second = c;
    have = have < 2 ? have + 1 : 2;
  }
}

// The set of hashes one document has given already; open addressing, emptied per document.
class SeenHashes {
 public:
  bool insert(std::uint64_t hash) {
    if ((used_.size() + 1) * 2 > slots_.size())
      grow();
    const std::uint64_t key = hash | 1;
    std::size_t i = std::size_t(hash) & (slots_.size() - 1);
    while (slots_[i] != 0) {
      if (slots_[i] == key)
        return false;
      i = (i + 1) & (slots_.size() - 1);
    }
    slots_[i] = key;
    used_.push_back(i);
    return true;
  }
  void clear() {
    for (const std::size_t i : used_)
      slots_[i] = 0;
    used_.clear();
  }

 private:
  void grow() {
    std::vector<std::uint64_t> old;
    old.swap(slots_);
    slots_.assign(old.empty() ? 4096 : old.size() * 2, 0);
    used_.clear();
    for (const std::uint64_t key : old) {
      if (key == 0)
        continue;
      std::size_t i = std::size_t(key) & (slots_.size() - 1);
      while (slots_[i] != 0)
        i = (i + 1) & (slots_.size() - 1);
      slots_[i] = key;
      used_.push_back(i);
    }
  }

  std::vector<std::uint64_t> slots_;
  std::vector<std::size_t> used_;
};

struct Tokenizer {
  SeenHashes seen;
};

int createTokenizer(void*, const char**, int, Fts5Tokenizer** out) {
  *out = reinterpret_cast<Fts5Tokenizer*>(new Tokenizer);
  return SQLITE_OK;
}

void deleteTokenizer(Fts5Tokenizer* tokenizer) {
  delete reinterpret_cast<Tokenizer*>(tokenizer);
}

int tokenize(Fts5Tokenizer* tokenizer, void* context, int flags, const char* text, int size,
             int (*token)(void*, int, const char*, int, int, int)) {
  auto* self = reinterpret_cast<Tokenizer*>(tokenizer);
  const auto* z = reinterpret_cast<const unsigned char*>(text);
  // A document names each token once: the index keeps no positions, so repeats add nothing.
  const bool document = (flags & FTS5_TOKENIZE_DOCUMENT) != 0;
  int rc = SQLITE_OK;
  forEachTriple(z, z + size, [&](std::uint64_t hash) {
    if (rc != SQLITE_OK || (document && !self->seen.insert(hash)))
      return;
    char bytes[kTokenBytes];
    for (int i = 0; i < kTokenBytes; ++i)
      bytes[i] = char(0x80 | ((hash >> (7 * i)) & 0x7f));
    rc = token(context, 0, bytes, kTokenBytes, 0, size);
  });
  self->seen.clear();
  return rc;
}

fts5_tokenizer kTokenizer = {createTokenizer, deleteTokenizer, tokenize};

}  // namespace

bool TrigramTokenizer::registerWith(sqlite3* connection) {
  fts5_api* api = nullptr;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(connection, "SELECT fts5(?1)", -1, &statement, nullptr) != SQLITE_OK)
    return false;
  sqlite3_bind_pointer(statement, 1, static_cast<void*>(&api), "fts5_api_ptr", nullptr);
  sqlite3_step(statement);
  sqlite3_finalize(statement);
  if (api == nullptr || api->iVersion < 2)
    return false;
  return api->xCreateTokenizer(api, kName, nullptr, &kTokenizer, nullptr) == SQLITE_OK;
}

QList<QByteArray> TrigramTokenizer::likeTriples(const QString& pattern) {
  const QByteArray utf8 = pattern.toUtf8();
  const auto* z = reinterpret_cast<const unsigned char*>(utf8.constData());
  const unsigned char* end = z + utf8.size();
  QList<QByteArray> triples;
  SeenHashes seen;
  // The code points of the current literal run (the stretch since the last wildcard) and
  // where each begins.
  std::vector<std::uint32_t> points;
  std::vector<const unsigned char*> starts;
  while (z != end) {
    const unsigned char* at = z;
    const std::uint32_t c = nextCodePoint(z, end);
    if (c == '%' || c == '_') {
      points.clear();
      starts.clear();
      continue;
    }
    points.push_back(c);
    starts.push_back(at);
    const std::size_t n = points.size();
    if (n < 3 || !isWordCharacter(points[n - 3]) || !isWordCharacter(points[n - 2]) ||
        !isWordCharacter(c) || !seen.insert(tripleHash(points[n - 3], points[n - 2], c)))
      continue;
    const char* from = reinterpret_cast<const char*>(starts[n - 3]);
    triples.append(QByteArray(from, reinterpret_cast<const char*>(z) - from));
  }
  return triples;
}

}  // namespace quillery::archive
