#include "archive/GramTokenizer.h"

#include <sqlite3.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "archive/Fts5Tokenizers.h"
#include "archive/LikeText.h"

namespace quillery::archive {
namespace {

using like_text::isWordCharacter;
using like_text::nextCodePoint;

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

// A triple token: 35 bits of the hash, seven to a byte with the high bit set (FTS5 keeps its
// terms as C strings, so no byte may be 0). Spread over many bits, tokens fall into distinct
// places of FTS5's table of pending terms, whose hash mixes few bits of a short term.
constexpr int kTripleBytes = 5;

int tripleToken(std::uint64_t hash, char* out) {
  for (int i = 0; i < kTripleBytes; ++i)
    out[i] = char(0x80 | ((hash >> (7 * i)) & 0x7f));
  return kTripleBytes;
}

// The triples of a text: each run of three word characters.
template <typename TakeTriple>
void forEachTriple(const unsigned char* z, const unsigned char* end, TakeTriple triple) {
  std::uint32_t c[3] = {};
  int run = 0;
  while (z != end) {
    const std::uint32_t next = nextCodePoint(z, end);
    if (!isWordCharacter(next)) {
      run = 0;
      continue;
    }
    c[0] = c[1];
    c[1] = c[2];
    c[2] = next;
    if (++run >= 3)
      triple(tripleHash(c));
  }
}

struct Tokenizer {
  std::vector<std::uint64_t> seen;  // the triples the document has given
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
  // query term is one triple.
  const bool document = (flags & FTS5_TOKENIZE_DOCUMENT) != 0;
  int length = 0;
  for (const unsigned char* at = z; !document && at != z + size; ++length)
    nextCodePoint(at, z + size);
  int rc = SQLITE_OK;
  char bytes[kTripleBytes];
  self->seen.clear();
  forEachTriple(z, z + size, [&](std::uint64_t hash) {
    if (rc != SQLITE_OK ||
        (document ? std::find(self->seen.begin(), self->seen.end(), hash) != self->seen.end()
                  : length != 3))
      return;
    self->seen.push_back(hash);
    rc = token(context, 0, bytes, tripleToken(hash, bytes), 0, size);
  });
  return rc;
}

fts5_tokenizer kTokenizer = {createTokenizer, deleteTokenizer, tokenize};

}  // namespace

bool GramTokenizer::registerWith(sqlite3* connection) {
  return registerFts5Tokenizer(connection, kName, nullptr, &kTokenizer);
}

QByteArray GramTokenizer::documentTriples(QByteArrayView text) {
  return documentTokens(kTokenizer, nullptr, text);
}

QList<QByteArray> GramTokenizer::likeGrams(const QString& pattern) {
  const QByteArray utf8 = pattern.toUtf8();
  const auto* z = reinterpret_cast<const unsigned char*>(utf8.constData());
  const unsigned char* end = z + utf8.size();
  QList<QByteArray> grams;
  // A run of word characters of the literal text lies inside one word of a matching text: its
  // triples are there.
  std::vector<const unsigned char*> starts;
  const auto takeRun = [&](const unsigned char* runEnd) {
    for (std::size_t i = 0; i + 3 <= starts.size(); ++i) {
      const unsigned char* to = i + 3 < starts.size() ? starts[i + 3] : runEnd;
      const QByteArray gram(reinterpret_cast<const char*>(starts[i]), to - starts[i]);
      if (!grams.contains(gram))
        grams.append(gram);
    }
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
