#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillery::bench {

// The words of the generated mail, ranked by frequency: about a hundred common English words
// first, then 200,000 made-up words with English-like spelling, among them capitalised names,
// numbers of several forms and words with accented or Greek and Cyrillic letters. The list is
// the same on every machine and for every corpus seed (it has its own fixed generator), so a
// benchmark can name a rare, a medium or a common word by its rank. Words are drawn with a
// probability proportional to 1 / rank (Zipf's law), computed in integers so that every
// machine draws alike.
class Vocabulary {
 public:
  // The one list, made on first use.
  static const Vocabulary& words();

  std::size_t size() const { return words_.size(); }
  // The word of this rank, 1 being the most frequent; ranks past the end give the last word.
  const std::string& at(std::size_t rank) const;
  // The rank that a uniformly random 64-bit number picks.
  std::size_t draw(std::uint64_t random) const;
  // A first name and a family name for a sender or recipient (about seventy first names and
  // 5,000 family names), drawn by the same law.
  const std::string& firstName(std::uint64_t random) const;
  const std::string& familyName(std::uint64_t random) const;

 private:
  Vocabulary();

  std::vector<std::string> words_;
  std::vector<std::uint64_t> cumulative_;
  std::vector<std::string> firstNames_;
  std::vector<std::uint64_t> firstNameCumulative_;
  std::vector<std::string> familyNames_;
  std::vector<std::uint64_t> familyNameCumulative_;
};

}  // namespace quillery::bench
