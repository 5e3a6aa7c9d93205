// corpusgen: writes a generated mail corpus for the benchmarks, the same for a given seed on
// every machine.
//
//   corpusgen --count N [--seed S] [--mbox FILE] [--emlx MAILROOT] [--maildir FOLDER]
//   corpusgen --word-at RANK
//
// The store benchmark (bench/store/store-bench.sh) and the domail benchmark take the
// 20,000-message mbox, about 400 MB:
//
//   corpusgen --count 20000 --seed 1 --mbox bench/out/corpus-20k.mbox
//
// and the memory figure of bench/domail uses a 1 GB one (--count 50000); the domail benchmark
// also reads the same 20,000 messages as a Maildir (--maildir). The text is drawn from a fixed
// vocabulary ranked by frequency; --word-at prints the word of a rank (1 the most frequent, about
// 200,000 the rarest), the same for every seed, so that a benchmark can search for a rare, a
// medium or a common word. Generated corpora
// stay out of git (bench/out/ is ignored). Exit status 0, or 1 when an output cannot be
// written, 2 for a malformed command line.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "CorpusGenerator.h"
#include "CorpusWriter.h"
#include "MaildirWriter.h"
#include "Vocabulary.h"

namespace {

const char* const kHelp =
    "usage: corpusgen --count N [--seed S] [--mbox FILE] [--emlx MAILROOT] [--maildir FOLDER]\n"
    "       corpusgen --word-at RANK\n"
    "\n"
    "Writes N generated messages (bodies of 0.5 to 20 KB, a quarter with an HTML\n"
    "alternative, about 15 % with a 10 to 200 KB attachment, some encoded headers) as one\n"
    "mbox file and/or as an Apple Mail tree of .emlx files under MAILROOT\n"
    "(MAILROOT/V2/Bench@example.com/{INBOX,Sent Messages,Archive}.mbox/Messages/N.emlx, so\n"
    "that MAILROOT can stand for $HOME/Library/Mail), and/or as a Maildir FOLDER (the INBOX\n"
    "with the Maildir++ subfolders .Sent and .Archive). The same seed (default 1) gives the\n"
    "same corpus on every machine. 20,000 messages come to about 400 MB:\n"
    "\n"
    "  corpusgen --count 20000 --seed 1 --mbox bench/out/corpus-20k.mbox\n"
    "\n"
    "The text comes from a fixed vocabulary of about 200,000 words whose frequency falls\n"
    "with its rank (names, numbers and accented, Greek and Cyrillic words among them);\n"
    "--word-at RANK prints the word of that rank (1 is the most frequent).\n";

bool number(const char* text, unsigned long long& out) {
  char* end = nullptr;
  errno = 0;
  out = std::strtoull(text, &end, 10);
  return errno == 0 && end && *end == '\0' && end != text;
}

}  // namespace

int main(int argc, char** argv) {
  unsigned long long count = 0;
  unsigned long long seed = 1;
  std::string mbox;
  std::string emlx;
  std::string maildir;
  for (int i = 1; i < argc; ++i) {
    const std::string option = argv[i];
    if (option == "--help" || option == "-h") {
      std::fputs(kHelp, stdout);
      return 0;
    }
    if (i + 1 >= argc) {
      std::fprintf(stderr, "corpusgen: %s needs a value\n%s", option.c_str(), kHelp);
      return 2;
    }
    const char* value = argv[++i];
    bool ok = true;
    if (option == "--count") {
      ok = number(value, count);
    } else if (option == "--seed") {
      ok = number(value, seed);
    } else if (option == "--mbox") {
      mbox = value;
    } else if (option == "--emlx") {
      emlx = value;
    } else if (option == "--maildir") {
      maildir = value;
    } else if (option == "--word-at") {
      unsigned long long rank = 0;
      ok = number(value, rank) && rank > 0;
      if (ok) {
        std::printf("%s\n", quillery::bench::Vocabulary::words().at(rank).c_str());
        return 0;
      }
    } else {
      ok = false;
    }
    if (!ok) {
      std::fprintf(stderr, "corpusgen: bad option %s %s\n%s", option.c_str(), value, kHelp);
      return 2;
    }
  }
  if (count == 0 || (mbox.empty() && emlx.empty() && maildir.empty())) {
    std::fprintf(
        stderr, "corpusgen: give --count and at least one of --mbox, --emlx, --maildir\n%s", kHelp);
    return 2;
  }
  quillery::bench::CorpusGenerator generator(seed);
  quillery::bench::CorpusWriter writer(mbox, emlx);
  quillery::bench::MaildirWriter maildirWriter(maildir);
  std::string error;
  if (!writer.open(error) || (!maildir.empty() && !maildirWriter.open(error))) {
    std::fprintf(stderr, "corpusgen: %s\n", error.c_str());
    return 1;
  }
  for (unsigned long long i = 0; i < count; ++i) {
    const quillery::bench::CorpusGenerator::Message message = generator.next();
    if (!writer.write(message, error) ||
        (!maildir.empty() && !maildirWriter.write(message, error))) {
      std::fprintf(stderr, "corpusgen: %s\n", error.c_str());
      return 1;
    }
  }
  if (!writer.close(error)) {
    std::fprintf(stderr, "corpusgen: %s\n", error.c_str());
    return 1;
  }
  if (!mbox.empty()) {
    std::printf("%llu messages, %.1f MB in %s\n", count,
                static_cast<double>(writer.mboxBytes()) / 1e6, mbox.c_str());
  }
  return 0;
}
