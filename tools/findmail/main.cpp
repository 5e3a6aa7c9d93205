// findmail <outputfile> <account folder name>... [Mailboxes]
//
// Writes every mailbox of the named account folders of $HOME/Library/Mail (the word
// "Mailboxes" names the local mailboxes folder) into <outputfile>, one per line: the absolute
// path of the mailbox's ".mbox" (or ".imapmbox") folder followed by "\n", which is what domail
// takes back as a mailbox argument. Nested mailboxes have lines of their own, after their
// parent; a mailbox that two names stand for (a version folder "V10" and "Mailboxes") is
// listed once. A name is looked for in the newest version folder (V2...V10) that has it, then
// in the mail folder itself.
//
// The tool always exits with status 0, because the application reads the list whatever
// happens: folders that cannot be read are passed over, names holding a line end are left
// out (they cannot be told apart from two lines), and when the output file cannot be written
// a line on standard error says why (the application then finds no list or a short one).
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/MailWalker.h"

namespace {

bool writeLines(const char* path, const std::vector<std::string>& lines) {
  std::FILE* out = std::fopen(path, "w");
  if (!out) {
    return false;
  }
  bool ok = true;
  for (const std::string& line : lines) {
    ok = ok && std::fwrite(line.data(), 1, line.size(), out) == line.size() &&
         std::fputc('\n', out) != EOF;
  }
  return std::fclose(out) == 0 && ok;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fputs("usage: findmail <outputfile> <account folder name>... [Mailboxes]\n", stderr);
    return 0;
  }
  try {
    const char* home = std::getenv("HOME");
    const std::string mailRoot = std::string(home ? home : "") + "/Library/Mail";
    const std::vector<std::string> accounts(argv + 2, argv + argc);
    const std::vector<std::string> lines = quillery::tools::listMailboxes(mailRoot, accounts);
    if (!writeLines(argv[1], lines)) {
      std::fprintf(stderr, "findmail: cannot write %s: %s\n", argv[1], std::strerror(errno));
    }
  } catch (const std::exception& e) {
    std::fprintf(stderr, "findmail: %s\n", e.what());
  }
  return 0;
}
