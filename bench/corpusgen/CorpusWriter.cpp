#include "CorpusWriter.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>

namespace quillery::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char* kBoxes[] = {"INBOX", "Sent Messages", "Archive"};

std::string postmark(std::time_t when) {
  std::tm tm{};
  gmtime_r(&when, &tm);
  char text[64];
  std::strftime(text, sizeof text, "From bench@generated.example %a %b %e %H:%M:%S %Y\n", &tm);
  return text;
}

bool needsQuote(std::string_view line) {
  std::size_t i = 0;
  while (i < line.size() && line[i] == '>') {
    ++i;
  }
  return line.substr(i, 5) == "From ";
}

}  // namespace

CorpusWriter::~CorpusWriter() {
  if (mbox_) {
    std::fclose(mbox_);
  }
}

bool CorpusWriter::open(std::string& error) {
  if (!mboxPath_.empty()) {
    std::error_code ec;
    const fs::path parent = fs::path(mboxPath_).parent_path();
    if (!parent.empty()) {
      fs::create_directories(parent, ec);
    }
    mbox_ = std::fopen(mboxPath_.c_str(), "wb");
    if (!mbox_) {
      error = "cannot write " + mboxPath_ + ": " + std::strerror(errno);
      return false;
    }
  }
  if (!mailRoot_.empty()) {
    for (const char* box : kBoxes) {
      std::error_code ec;
      const fs::path folder = fs::path(mailRoot_) / "V2" / "Bench@example.com" /
                              (std::string(box) + ".mbox") / "Messages";
      fs::create_directories(folder, ec);
      if (ec) {
        error = "cannot create " + folder.string() + ": " + ec.message();
        return false;
      }
    }
  }
  return true;
}

bool CorpusWriter::write(const CorpusGenerator::Message& message, std::string& error) {
  ++number_;
  if (mbox_) {
    buffer_ = postmark(message.date);
    std::size_t pos = 0;
    const std::string& s = message.source;
    while (pos < s.size()) {
      std::size_t end = s.find('\n', pos);
      end = end == std::string::npos ? s.size() : end + 1;
      if (needsQuote(std::string_view(s).substr(pos, end - pos))) {
        buffer_ += '>';
      }
      buffer_.append(s, pos, end - pos);
      pos = end;
    }
    buffer_ += '\n';
    if (std::fwrite(buffer_.data(), 1, buffer_.size(), mbox_) != buffer_.size()) {
      error = "cannot write " + mboxPath_ + ": " + std::strerror(errno);
      return false;
    }
    mboxBytes_ += buffer_.size();
  }
  if (!mailRoot_.empty()) {
    const fs::path file = fs::path(mailRoot_) / "V2" / "Bench@example.com" /
                          (std::string(kBoxes[message.mailbox]) + ".mbox") / "Messages" /
                          (std::to_string(number_) + ".emlx");
    std::FILE* out = std::fopen(file.c_str(), "wb");
    const std::string head = std::to_string(message.source.size()) + "\n";
    const std::string plist =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD "
        "PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist "
        "version=\"1.0\">\n<dict>\n\t<key>date-received</key>\n\t<integer>" +
        std::to_string(message.date + 40) +
        "</integer>\n\t<key>flags</key>\n\t<integer>8590195713</integer>\n</dict>\n</plist>\n";
    const bool ok = out && std::fwrite(head.data(), 1, head.size(), out) == head.size() &&
                    std::fwrite(message.source.data(), 1, message.source.size(), out) ==
                        message.source.size() &&
                    std::fwrite(plist.data(), 1, plist.size(), out) == plist.size();
    const int savedErrno = errno;
    if ((out && std::fclose(out) != 0) || !ok) {
      error = "cannot write " + file.string() + ": " + std::strerror(savedErrno);
      return false;
    }
  }
  return true;
}

bool CorpusWriter::close(std::string& error) {
  if (mbox_) {
    const bool ok = std::fclose(mbox_) == 0;
    mbox_ = nullptr;
    if (!ok) {
      error = "cannot write " + mboxPath_ + ": " + std::strerror(errno);
      return false;
    }
  }
  return true;
}

}  // namespace quillery::bench
