#include "archive/WordTokenizer.h"

#include <sqlite3.h>

#include <algorithm>
#include <climits>
#include <cstdint>

#include "archive/Fts5Tokenizers.h"
#include "archive/LikeText.h"

namespace quillery::archive {
namespace {

// The words seen are forgotten beyond this many, which bounds the memory of a long build.
constexpr std::size_t kMostSeen = 500'000;

int characters(QByteArrayView utf8) {
  return int(std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xc0) != 0x80; }));
}

// The UTF-8 of the first `count` characters.
QByteArray firstCharacters(const QByteArray& utf8, int count) {
  qsizetype end = 0;
  for (int seen = 0; end < utf8.size(); ++end) {
    if ((utf8[end] & 0xc0) != 0x80 && seen++ == count)
      break;
  }
  return utf8.left(end);
}

struct Tokenizer {
  explicit Tokenizer(WordTokenizer::Seen* seenWords) : seen(seenWords) {}
  WordTokenizer::Seen* seen;
  std::string word;
  std::vector<std::size_t> starts;  // of the word's characters in `word`
};

int createTokenizer(void* seen, const char**, int, Fts5Tokenizer** out) {
  *out = reinterpret_cast<Fts5Tokenizer*>(new Tokenizer(static_cast<WordTokenizer::Seen*>(seen)));
  return SQLITE_OK;
}

void deleteTokenizer(Fts5Tokenizer* tokenizer) {
  delete reinterpret_cast<Tokenizer*>(tokenizer);
}

// Gives the word collected in the tokenizer, or its pieces when it is long.
template <typename Give>
int giveWord(Tokenizer& self, Give give) {
  const std::size_t n = self.starts.size();
  int rc = SQLITE_OK;
  if (n >= 3 && n <= std::size_t(WordTokenizer::kLongest))
    rc = give(std::string_view(self.word));
  for (std::size_t from = 0; rc == SQLITE_OK && n > std::size_t(WordTokenizer::kLongest);
       from += WordTokenizer::kStep) {
    const bool last = from + WordTokenizer::kLongest >= n;
    if (last)
      from = n - WordTokenizer::kLongest;
    const std::size_t to = from + WordTokenizer::kLongest;
    const std::size_t begin = self.starts[from];
    const std::size_t end = to == n ? self.word.size() : self.starts[to];
    rc = give(std::string_view(self.word).substr(begin, end - begin));
    if (last)
      break;
  }
  self.word.clear();
  self.starts.clear();
  return rc;
}

int tokenize(Fts5Tokenizer* tokenizer, void* context, int flags, const char* text, int size,
             int (*token)(void*, int, const char*, int, int, int)) {
  // A query term names a word of the vocabulary as the index keeps it.
  if ((flags & FTS5_TOKENIZE_DOCUMENT) == 0)
    return size == 0 ? SQLITE_OK : token(context, 0, text, size, 0, size);
  auto& self = *reinterpret_cast<Tokenizer*>(tokenizer);
  const std::uint32_t document = self.seen->nextDocument();
  const auto give = [&](std::string_view word) {
    return self.seen->take(word, document)
               ? token(context, 0, word.data(), int(word.size()), 0, size)
               : SQLITE_OK;
  };
  const auto* z = reinterpret_cast<const unsigned char*>(text);
  const unsigned char* end = z + size;
  int rc = SQLITE_OK;
  while (z != end && rc == SQLITE_OK) {
    const std::uint32_t c = like_text::nextCodePoint(z, end);
    if (like_text::isWordCharacter(c)) {
      self.starts.push_back(self.word.size());
      like_text::appendUtf8(self.word, c);
    } else if (!self.starts.empty()) {
      rc = giveWord(self, give);
    }
  }
  if (rc == SQLITE_OK)
    rc = giveWord(self, give);
  self.word.clear();
  self.starts.clear();
  return rc;
}

fts5_tokenizer kTokenizer = {createTokenizer, deleteTokenizer, tokenize};

}  // namespace

bool WordTokenizer::Seen::take(std::string_view word, std::uint32_t document) {
  if ((used_ + 1) * 2 > slots_.size())
    grow();
  const auto hash = std::uint32_t(std::hash<std::string_view>()(word));
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = hash & mask;; i = (i + 1) & mask) {
    Slot& slot = slots_[i];
    if (slot.document == 0) {
      slot = {hash, document, std::uint32_t(text_.size()), std::uint32_t(word.size())};
      text_.append(word);
      ++used_;
      fresh.emplace_back(word);
      return true;
    }
    if (slot.hash == hash && std::string_view(text_).substr(slot.at, slot.size) == word) {
      if (slot.document == document)
        return false;
      slot.document = document;
      return true;
    }
  }
}

void WordTokenizer::Seen::grow() {
  std::vector<Slot> old(slots_.empty() ? 4096 : slots_.size() * 2);
  old.swap(slots_);
  const std::size_t mask = slots_.size() - 1;
  for (const Slot& slot : old) {
    if (slot.document == 0)
      continue;
    std::size_t i = slot.hash & mask;
    while (slots_[i].document != 0)
      i = (i + 1) & mask;
    slots_[i] = slot;
  }
}

std::uint32_t WordTokenizer::Seen::nextDocument() {
  // The fresh words stay: they are still to be added to the vocabulary.
  if (used_ > kMostSeen || documents_ == UINT32_MAX)
    clearWords();
  return ++documents_;
}

void WordTokenizer::Seen::forget() {
  clearWords();
  fresh.clear();
}

void WordTokenizer::Seen::clearWords() {
  slots_.clear();
  text_.clear();
  used_ = 0;
  documents_ = 0;
}

bool WordTokenizer::registerWith(sqlite3* connection, Seen* seen) {
  return registerFts5Tokenizer(connection, kName, seen, &kTokenizer);
}

QByteArray WordTokenizer::documentWords(QByteArrayView text) {
  Seen seen;
  return documentTokens(kTokenizer, &seen, text);
}

QList<QByteArray> WordTokenizer::likeRuns(const QString& pattern) {
  const QByteArray utf8 = pattern.toUtf8();
  const auto* z = reinterpret_cast<const unsigned char*>(utf8.constData());
  const unsigned char* end = z + utf8.size();
  QList<QByteArray> runs;
  std::string run;
  int length = 0;
  const auto takeRun = [&] {
    const QByteArray taken(run.data(), qsizetype(run.size()));
    if (length >= 3 && !runs.contains(taken))
      runs.append(taken);
    run.clear();
    length = 0;
  };
  while (z != end) {
    // The wildcards "%" and "_" are no word characters, so they end a run like any other.
    const std::uint32_t c = like_text::nextCodePoint(z, end);
    if (like_text::isWordCharacter(c)) {
      like_text::appendUtf8(run, c);
      ++length;
    } else {
      takeRun();
    }
  }
  takeRun();
  std::stable_sort(runs.begin(), runs.end(), [](const QByteArray& a, const QByteArray& b) {
    return characters(a) > characters(b);
  });
  return runs;
}

QByteArray WordTokenizer::lookupKey(const QByteArray& run) {
  return characters(run) > kReach ? firstCharacters(run, kReach) : run;
}

bool WordTokenizer::mayHold(QByteArrayView word, const QByteArray& run) {
  if (word.contains(run))
    return true;
  // A piece of a long word holds the run's first kReach characters where the word holds it.
  return characters(run) > kReach && characters(word) == kLongest &&
         word.contains(firstCharacters(run, kReach));
}

}  // namespace quillery::archive
