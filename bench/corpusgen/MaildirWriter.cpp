#include "MaildirWriter.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace quillery::bench {
namespace {

namespace fs = std::filesystem;

// The folder of each generated mailbox (INBOX, Sent Messages, Archive).
constexpr const char* kBoxes[] = {"", ".Sent", ".Archive"};

}  // namespace

bool MaildirWriter::open(std::string& error) {
  for (const char* box : kBoxes) {
    for (const char* sub : {"cur", "new", "tmp"}) {
      std::error_code ec;
      const fs::path folder = fs::path(root_) / box / sub;
      fs::create_directories(folder, ec);
      if (ec) {
        error = "cannot create " + folder.string() + ": " + ec.message();
        return false;
      }
    }
  }
  return true;
}

bool MaildirWriter::write(const CorpusGenerator::Message& message, std::string& error) {
  ++number_;
  const bool unread = number_ % 10 == 0;
  const std::string name = std::to_string(message.date) + ".M" + std::to_string(number_) +
                           "P1.bench" + (unread ? "" : ":2,S");
  const fs::path file = fs::path(root_) / kBoxes[message.mailbox] / (unread ? "new" : "cur") / name;
  std::FILE* out = std::fopen(file.c_str(), "wb");
  const bool ok = out && std::fwrite(message.source.data(), 1, message.source.size(), out) ==
                             message.source.size();
  const int savedErrno = errno;
  if ((out && std::fclose(out) != 0) || !ok) {
    error = "cannot write " + file.string() + ": " + std::strerror(savedErrno);
    return false;
  }
  return true;
}

}  // namespace quillery::bench
