#include "archive/GramTokenizer.h"

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

std::uint64_t mixed(std::uint64_t x) {
  x ^= x >> 33;
  x *= 0xff51afd7ed558ccdull;
  x ^= x >> 33;
  x *= 0xc4ceb9fe1a85ec53ull;
  return x ^ (x >> 33);
}

std::uint64_t tripleHash(const std::uint32_t* c) {
  return mixed((std::uint64_t(c[0]) << 42) ^ (std::uint64_t(c[1]) << 21) ^ c[2]);
}

// Quads share 2^14 values: few enough that the terms FTS5 collects while writing stay in the
// processor's caches (writing costs about a cache miss a term), enough that a run of five or
// more characters rarely finds all its quads in a message that lacks it.
constexpr int kQuadBits = 14;

std::uint64_t quadKey(const std::uint32_t* c) {
  return mixed(tripleHash(c) ^ (std::uint64_t(c[3]) * 0x9E3779B97F4A7C15ull)) &
         ((std::uint64_t{1} << kQuadBits) - 1);
}

// A triple token: 35 bits of the hash, seven to a byte with the high bit set (FTS5 keeps its
// terms as C strings, so no byte may be 0). A quad token: the byte 1, then 35 bits of a hash of
// the value in the same way. Spread over many bits, tokens fall into distinct places of FTS5's
// table of pending terms, whose hash mixes few bits of a short term.
constexpr int kTripleBytes = 5;
constexpr int kQuadBytes = 6;

int tripleToken(std::uint64_t hash, char* out) {
  for (int i = 0; i < kTripleBytes; ++i)
    out[i] = char(0x80 | ((hash >> (7 * i)) & 0x7f));
  return kTripleBytes;
}

int quadToken(std::uint64_t key, char* out) {
  out[0] = 1;
  return 1 + tripleToken(mixed(key + 1), out + 1);
}

// The grams of a text: each run of three word characters as a triple, of four as a quad.
template <typename TakeTriple, typename TakeQuad>
void forEachGram(const unsigned char* z, const unsigned char* end, TakeTriple triple,
                 TakeQuad quad) {
  std::uint32_t c[4] = {};
  int run = 0;
  while (z != end) {
    const std::uint32_t next = nextCodePoint(z, end);
    if (!isWordCharacter(next)) {
      run = 0;
      continue;
    }
    c[0] = c[1];
    c[1] = c[2];
    c[2] = c[3];
    c[3] = next;
    ++run;
    if (run >= 3)
      triple(tripleHash(c + 1));
    if (run >= 4)
      quad(quadKey(c));
  }
}

// The set of values one document has given already; open addressing, emptied per document.
class SeenHashes {
 public:
  bool insert(std::uint64_t value) {
    if ((used_.size() + 1) * 2 > slots_.size())
      grow();
    std::size_t i = slotOf(value);
    while (slots_[i].used) {
      if (slots_[i].value == value)
        return false;
      i = (i + 1) & (slots_.size() - 1);
    }
    slots_[i] = {value, true};
    used_.push_back(i);
    return true;
  }
  void clear() {
    for (const std::size_t i : used_)
      slots_[i].used = false;
    used_.clear();
  }

 private:
  struct Slot {
    std::uint64_t value = 0;
    bool used = false;
  };
  std::size_t slotOf(std::uint64_t value) const {
    return std::size_t(mixed(value)) & (slots_.size() - 1);
  }
  void grow() {
    std::vector<Slot> old(slots_.empty() ? 4096 : slots_.size() * 2);
    old.swap(slots_);
    used_.clear();
    for (const Slot& slot : old) {
      if (slot.used)
        insert(slot.value);
    }
  }

  std::vector<Slot> slots_;
  std::vector<std::size_t> used_;
};

struct Tokenizer {
  SeenHashes triples;
  SeenHashes quads;
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
  // A document names each token once: the index keeps no positions, so repeats add nothing. A
  // query term is one gram, of three or four characters.
  const bool document = (flags & FTS5_TOKENIZE_DOCUMENT) != 0;
  int length = 0;
  for (const unsigned char* at = z; !document && at != z + size; ++length)
    nextCodePoint(at, z + size);
  int rc = SQLITE_OK;
  char bytes[kQuadBytes];
  forEachGram(
      z, z + size,
      [&](std::uint64_t hash) {
        if (rc == SQLITE_OK && (document ? self->triples.insert(hash) : length == 3))
          rc = token(context, 0, bytes, tripleToken(hash, bytes), 0, size);
      },
      [&](std::uint64_t key) {
        if (rc == SQLITE_OK && (document ? self->quads.insert(key) : length == 4))
          rc = token(context, 0, bytes, quadToken(key, bytes), 0, size);
      });
  self->triples.clear();
  self->quads.clear();
  return rc;
}

fts5_tokenizer kTokenizer = {createTokenizer, deleteTokenizer, tokenize};

}  // namespace

bool GramTokenizer::registerWith(sqlite3* connection) {
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

QList<QByteArray> GramTokenizer::likeGrams(const QString& pattern) {
  const QByteArray utf8 = pattern.toUtf8();
  const auto* z = reinterpret_cast<const unsigned char*>(utf8.constData());
  const unsigned char* end = z + utf8.size();
  QList<QByteArray> grams;
  const auto add = [&grams](const unsigned char* from, const unsigned char* to) {
    const QByteArray gram(reinterpret_cast<const char*>(from), to - from);
    if (!grams.contains(gram))
      grams.append(gram);
  };
  // A run of word characters of the literal text lies inside one word of a matching message:
  // its quads are there, or the run itself when it is a triple.
  std::vector<const unsigned char*> starts;
  const auto takeRun = [&](const unsigned char* runEnd) {
    const std::size_t n = starts.size();
    if (n == 3)
      add(starts[0], runEnd);
    for (std::size_t i = 0; n >= 4 && i + 4 <= n; ++i)
      add(starts[i], i + 4 < n ? starts[i + 4] : runEnd);
    starts.clear();
  };
  while (z != end) {
    const unsigned char* at = z;
    const std::uint32_t c = nextCodePoint(z, end);
    // The wildcards "%" and "_" are no word characters, so they end a run like any other.
    if (isWordCharacter(c))
      starts.push_back(at);
    else
      takeRun(at);
  }
  takeRun(end);
  return grams;
}

}  // namespace quillery::archive
