#pragma once

#include <cstdint>
#include <ctime>
#include <string>

namespace quillery::bench {

// Makes a stream of realistic messages from a seed, the same on every machine (its own
// random generator, no library distributions): plain text bodies of 0.5 to 20 KB (log-
// uniform), a quarter with an HTML alternative, about 15 % with one attachment of 10 to
// 200 KB in base64, some quoted-printable UTF-8 text, encoded words in about a fifth of the
// subjects and sender names, body lines that begin with "From ", Received headers and dates
// that rise through the years. 20,000 messages come to about 400 MB. Words, names and numbers
// are drawn from the ranked Vocabulary, so that some words are in almost every message and
// others in a handful.
class CorpusGenerator {
 public:
  explicit CorpusGenerator(std::uint64_t seed) : state_(seed) {}

  // The next message's RFC 822 source (LF line ends) and the time in its Date header.
  struct Message {
    std::string source;
    std::time_t date = 0;
    int mailbox = 0;  // 0 INBOX, 1 Sent Messages, 2 Archive
  };
  Message next();

 private:
  std::uint64_t random();
  std::uint64_t below(std::uint64_t bound) { return random() % bound; }
  std::size_t logUniform(std::size_t low, std::size_t high);
  std::string word();
  std::string person(std::string& address);
  std::string paragraphText(std::size_t bytes);
  std::string subject();
  void appendAttachment(std::string& out, const std::string& boundary);

  std::uint64_t state_;
  long count_ = 0;
};

}  // namespace quillery::bench
