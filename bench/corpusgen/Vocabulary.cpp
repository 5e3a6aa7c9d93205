#include "Vocabulary.h"

#include <algorithm>
#include <unordered_set>

namespace quillery::bench {
namespace {

constexpr std::size_t kGeneratedWords = 200000;

// The head of the list: the words every mail is full of, most frequent first.
constexpr const char* kCommon[] = {
    "the",     "of",       "and",     "to",       "a",       "in",       "is",      "you",
    "that",    "it",       "for",     "on",       "was",     "with",     "as",      "I",
    "be",      "at",       "this",    "have",     "from",    "or",       "we",      "by",
    "not",     "are",      "but",     "will",     "can",     "all",      "your",    "if",
    "they",    "there",    "one",     "would",    "about",   "which",    "when",    "so",
    "please",  "thanks",   "meeting", "report",   "regards", "could",    "our",     "what",
    "time",    "know",     "like",    "just",     "project", "some",     "new",     "attached",
    "review",  "draft",    "budget",  "schedule", "update",  "question", "answer",  "team",
    "next",    "week",     "today",   "customer", "invoice", "delivery", "monday",  "friday",
    "weekend", "holiday",  "travel",  "hotel",    "flight",  "summary",  "numbers", "quarter",
    "release", "version",  "server",  "database", "backup",  "archive",  "message", "letter",
    "garden",  "kitchen",  "family",  "birthday", "dinner",  "concert",  "ticket",  "museum",
    "library", "science",  "history", "café",     "naïve",   "Grüße",    "déjà",    "señor",
    "Zürich",  "Ångström", "smörgås"};

// The parts of a syllable, the most frequent first: frequent words are made mostly of the
// first ones, rare words of any, so that rare words hold letter groups that few others have,
// as in a real language.
constexpr const char* kOnsets[] = {
    "",   "t",  "s",  "r",  "n",   "l",   "d",   "m",  "c",  "p",  "b",  "h",   "f",  "g",  "w",
    "st", "th", "tr", "pr", "br",  "ch",  "sh",  "cr", "gr", "fr", "pl", "bl",  "cl", "dr", "sp",
    "sl", "k",  "v",  "wh", "j",   "sc",  "sw",  "gl", "fl", "sm", "sn", "str", "qu", "y",  "ph",
    "kn", "wr", "z",  "x",  "spl", "scr", "thr", "zh", "kh", "gn", "ps", "tz",  "vl", "zv", "dj"};
constexpr const char* kVowels[] = {"e",  "a",  "o",  "i",  "u",  "ea", "ou", "y",
                                   "ee", "ai", "oo", "ie", "io", "au", "oa", "ei",
                                   "ue", "oi", "eu", "ae", "uo", "aa", "yi"};
constexpr const char* kCodas[] = {
    "",   "",   "n",  "r",  "s",   "t",   "l",   "d",  "st", "nd", "m",  "ng", "nt", "rt",
    "ck", "ll", "ss", "th", "rd",  "ct",  "ft",  "ld", "lt", "mp", "nk", "sk", "pt", "x",
    "rn", "rm", "rk", "sh", "ch",  "tch", "dge", "gh", "lf", "lm", "mb", "ps", "xt", "zz",
    "rb", "rv", "wn", "lk", "nch", "rst", "ght", "tz", "ks", "q",  "zk"};
constexpr const char* kNameEnds[] = {"son", "sen",  "mann", "ová", "ić",  "ez",   "ini",
                                     "ski", "berg", "ton",  "ley", "ard", "elli", "quist"};
// Accented stand-ins for the five vowels, UTF-8.
constexpr const char* kAccented[][4] = {{"á", "à", "ä", "å"},
                                        {"é", "è", "ë", "ê"},
                                        {"í", "ì", "ï", "î"},
                                        {"ó", "ö", "ø", "ô"},
                                        {"ú", "ü", "ù", "û"}};
constexpr const char* kGreek[] = {"κα", "λο", "μη", "τρι", "πε", "νο", "σο", "φι",
                                  "δε", "γα", "ρυ", "θε",  "χω", "ξυ", "ψα", "ζη"};
constexpr const char* kCyrillic[] = {"ко", "ла", "ми", "тры", "пе", "но", "со", "фи",
                                     "де", "га", "ру", "жи",  "чо", "шу", "щи", "юб"};
constexpr const char* kFirstNames[] = {
    "Anna",   "Bernd",  "Chloé",  "David",  "Eva",    "Frank",   "Gül",     "Hiro",    "Ingrid",
    "José",   "Karin",  "Lars",   "Marta",  "Nils",   "Olga",    "Pierre",  "Quentin", "Rosa",
    "Sven",   "Tomás",  "Ulrike", "Viktor", "Wanda",  "Xavier",  "Yusuf",   "Zoë",     "Agnès",
    "Björn",  "Carmen", "Dmitri", "Elif",   "Fatima", "Greta",   "Hamid",   "Irene",   "Jürgen",
    "Kenji",  "Leila",  "Mateo",  "Nadia",  "Oskar",  "Paula",   "Rafael",  "Sofia",   "Thomas",
    "Ursula", "Vera",   "Walter", "Amélie", "Bruno",  "Clara",   "Dieter",  "Emma",    "Felix",
    "Giulia", "Hannah", "Ivan",   "Jana",   "Kai",    "Lucía",   "Magnus",  "Noah",    "Otto",
    "Petra",  "Ruth",   "Simon",  "Tanja",  "Uwe",    "Valérie", "William", "Yara",    "Zeynep"};

// The vocabulary's own generator (splitmix64), never the corpus seed's.
class Source {
 public:
  std::uint64_t next() {
    std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }
  std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }
  template <std::size_t N>
  const char* pick(const char* const (&items)[N]) {
    return items[below(N)];
  }
  // An item drawn towards the front of the list: index N * u^skew for a uniform u, computed
  // in integers (u^skew as u^whole times a linear share of the next power).
  template <std::size_t N>
  const char* pickSkewed(const char* const (&items)[N], unsigned skewTenths) {
    constexpr std::uint64_t kOne = 1u << 16;
    const std::uint64_t u = next() % kOne;
    std::uint64_t power = kOne;
    for (unsigned i = 0; i < skewTenths / 10; ++i)
      power = power * u / kOne;
    const std::uint64_t fraction = skewTenths % 10;
    power = (power * (10 - fraction) + power * u / kOne * fraction) / 10;
    return items[std::min<std::size_t>(N - 1, std::size_t(power * N / kOne))];
  }

 private:
  std::uint64_t state_ = 0x51ED2701A11CE5ull;
};

// How strongly a word of this rank keeps to the frequent syllable parts, in tenths: 4 for the
// most frequent words, falling towards 1 (any part alike) for the rarest.
unsigned skewFor(std::size_t rank) {
  unsigned digits = 0;
  for (std::size_t r = rank; r >= 10; r /= 10)
    ++digits;
  return digits >= 5 ? 10 : 40 - 6 * digits;
}

// A rare part: one from the last third of the list.
template <std::size_t N>
const char* rarePart(Source& source, const char* const (&items)[N]) {
  return items[N - 1 - source.below(N / 3)];
}

std::string syllables(Source& source, std::size_t count, unsigned skew) {
  std::string word;
  // Words past the few thousand most frequent hold at least one rare part, as rare words of a
  // real language hold letter groups that few other words have.
  const std::size_t rare = skew <= 16 ? source.below(count * 2) : count * 2;
  for (std::size_t i = 0; i < count; ++i) {
    word += i * 2 == rare ? rarePart(source, kOnsets) : source.pickSkewed(kOnsets, skew);
    word += source.pickSkewed(kVowels, skew);
    word += i * 2 + 1 == rare ? rarePart(source, kCodas) : source.pickSkewed(kCodas, skew);
  }
  return word;
}

// Frequent words are short, rare ones long, as in a real language (skew falls with rank).
std::string plainWord(Source& source, unsigned skew) {
  const std::size_t roll = source.below(100);
  std::size_t count = 0;
  if (skew >= 28)
    count = roll < 70 ? 1 : 2;
  else if (skew >= 22)
    count = roll < 30 ? 1 : roll < 85 ? 2 : 3;
  else
    count = roll < 40 ? 2 : roll < 80 ? 3 : 4;
  return syllables(source, count, skew);
}

std::string capitalised(std::string word) {
  if (!word.empty() && word[0] >= 'a' && word[0] <= 'z')
    word[0] = static_cast<char>(word[0] - 'a' + 'A');
  return word;
}

std::string nameWord(Source& source, unsigned skew) {
  std::string name = capitalised(syllables(source, 1 + source.below(2), skew));
  if (source.below(2) == 0)
    name += source.pick(kNameEnds);
  return name;
}

std::string numberWord(Source& source) {
  switch (source.below(5)) {
    case 0:
      return std::to_string(1950 + source.below(80));  // a year
    case 1:
      return std::to_string(source.below(1000000));
    case 2:
      return std::to_string(1 + source.below(99999)) + "," +
             std::to_string(100 + source.below(900)) + "." + std::to_string(10 + source.below(90));
    case 3:
      return std::string(source.below(2) ? "INV-" : "REF-") +
             std::to_string(10000 + source.below(90000));
    default:
      return std::to_string(source.below(24)) + ":" + std::to_string(10 + source.below(50));
  }
}

std::string accentedWord(Source& source, unsigned skew) {
  std::string word;
  for (const char c : plainWord(source, skew)) {
    const char* vowels = "aeiou";
    const char* at = std::char_traits<char>::find(vowels, 5, c);
    if (at != nullptr && source.below(3) == 0)
      word += kAccented[at - vowels][source.below(4)];
    else
      word += c;
  }
  return word;
}

std::string foreignScriptWord(Source& source) {
  std::string word;
  const bool greek = source.below(2) == 0;
  const std::size_t count = 2 + source.below(3);
  for (std::size_t i = 0; i < count; ++i)
    word += greek ? source.pick(kGreek) : source.pick(kCyrillic);
  return word;
}

std::string generatedWord(Source& source, std::size_t rank) {
  const unsigned skew = skewFor(rank);
  const std::size_t kind = source.below(100);
  if (kind < 8)
    return nameWord(source, skew);
  if (kind < 14)
    return numberWord(source);
  if (kind < 19)
    return accentedWord(source, skew);
  if (kind < 20)
    return foreignScriptWord(source);
  return plainWord(source, skew);
}

// Running sums of floor(2^44 / rank): Zipf's law in integers.
std::vector<std::uint64_t> zipfSums(std::size_t count) {
  std::vector<std::uint64_t> sums(count);
  std::uint64_t total = 0;
  for (std::size_t rank = 1; rank <= count; ++rank) {
    total += (std::uint64_t{1} << 44) / rank;
    sums[rank - 1] = total;
  }
  return sums;
}

std::size_t drawFrom(const std::vector<std::uint64_t>& sums, std::uint64_t random) {
  const std::uint64_t x = random % sums.back();
  return static_cast<std::size_t>(std::upper_bound(sums.begin(), sums.end(), x) - sums.begin()) + 1;
}

}  // namespace

const Vocabulary& Vocabulary::words() {
  static const Vocabulary vocabulary;
  return vocabulary;
}

Vocabulary::Vocabulary() {
  Source source;
  std::unordered_set<std::string> seen;
  for (const char* word : kCommon) {
    words_.emplace_back(word);
    seen.insert(word);
  }
  while (words_.size() < std::size(kCommon) + kGeneratedWords) {
    std::string word = generatedWord(source, words_.size() + 1);
    if (word.size() > 1 && seen.insert(word).second)
      words_.push_back(std::move(word));
  }
  cumulative_ = zipfSums(words_.size());
  firstNames_.assign(std::begin(kFirstNames), std::end(kFirstNames));
  firstNameCumulative_ = zipfSums(firstNames_.size());
  while (familyNames_.size() < 5000) {
    std::string name = nameWord(source, 20);
    if (seen.insert(name).second)
      familyNames_.push_back(std::move(name));
  }
  familyNameCumulative_ = zipfSums(familyNames_.size());
}

const std::string& Vocabulary::at(std::size_t rank) const {
  return words_[std::clamp<std::size_t>(rank, 1, words_.size()) - 1];
}

std::size_t Vocabulary::draw(std::uint64_t random) const {
  return drawFrom(cumulative_, random);
}

const std::string& Vocabulary::firstName(std::uint64_t random) const {
  return firstNames_[drawFrom(firstNameCumulative_, random) - 1];
}

const std::string& Vocabulary::familyName(std::uint64_t random) const {
  return familyNames_[drawFrom(familyNameCumulative_, random) - 1];
}

}  // namespace quillery::bench
