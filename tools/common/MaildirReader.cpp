#include "common/MaildirReader.h"

#include <algorithm>
#include <cerrno>

#include "common/AsciiText.h"
#include "common/FileBytes.h"
#include "common/ImapFolderName.h"
#include "common/MboxPostmark.h"
#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

constexpr const char* kMessageFolders[] = {"new", "cur"};  // cur/ last: its copy wins

// ".Archives.2019" as "Archives/2019".
std::string subfolderName(std::string_view entryName) {
  std::string name = ImapFolderName::decoded(entryName.substr(1));
  std::replace(name.begin(), name.end(), '.', '/');
  return name;
}

}  // namespace

bool MaildirReader::isMaildir(const std::vector<FolderEntry>& entries) {
  const auto found = std::count_if(entries.begin(), entries.end(), [](const FolderEntry& e) {
    return e.folder && (e.name == "cur" || e.name == "new" || e.name == "tmp");
  });
  return found >= 2;
}

std::string_view MaildirReader::uniqueName(std::string_view fileName) {
  std::size_t end = fileName.find(':');
  for (const char* info : {";2,", "!2,"}) {
    end = std::min(end, fileName.find(info));
  }
  return fileName.substr(0, end);
}

std::optional<std::time_t> MaildirReader::deliveryTime(std::string_view fileName) {
  const std::string_view seconds = fileName.substr(0, fileName.find('.'));
  if (seconds.size() < 9 || seconds.size() > 10 || !ascii::allDigits(seconds)) {
    return std::nullopt;
  }
  std::time_t value = 0;
  for (char c : seconds) {
    value = value * 10 + (c - '0');
  }
  return value;
}

MaildirReader::Listing MaildirReader::list(const std::string& folder, bool reportUnreadable) const {
  Listing out;
  int listed = 0;
  std::vector<FolderEntry> entries;
  for (const char* sub : kMessageFolders) {
    if (!FolderListing::entries(folder + "/" + sub, entries)) {
      continue;
    }
    ++listed;
    for (FolderEntry& entry : entries) {
      if (!entry.folder && !entry.name.starts_with(".")) {
        out[std::string(uniqueName(entry.name))] = std::move(entry.path);
      }
    }
  }
  if (listed == 0 && reportUnreadable) {
    invalid_(folder);
  }
  return out;
}

bool MaildirReader::readFile(const std::string& folder, std::string_view unique, std::string& path,
                             std::time_t& modified) {
  if (FileBytes::read(path, buffer_, &modified)) {
    return true;
  }
  if (errno != ENOENT) {
    invalid_(path);
    return false;
  }
  // Gone since the listing: moved to cur/ or renamed by a mail client, or deleted.
  const Listing now = list(folder, false);
  const auto moved = now.find(unique);
  if (moved == now.end()) {
    return false;
  }
  path = moved->second;
  if (!FileBytes::read(path, buffer_, &modified)) {
    invalid_(path);
    return false;
  }
  return true;
}

bool MaildirReader::takePostmark(RawMessage& raw) {
  const std::size_t lineEnd = buffer_.find('\n');
  if (MboxPostmark::startsLikePostmark(buffer_) && lineEnd != std::string::npos &&
      MimeHeaders::startsWithField(std::string_view(buffer_).substr(lineEnd + 1))) {
    raw.postmarkDate = MboxPostmark::date(std::string_view(buffer_).substr(0, lineEnd));
    buffer_.erase(0, lineEnd + 1);
  }
  return MimeHeaders::startsWithField(buffer_);
}

bool MaildirReader::readMessages(const std::string& folder, const std::string& mailbox) {
  for (const auto& [unique, listedPath] : list(folder, true)) {
    std::string path = listedPath;
    std::time_t modified = 0;
    if (!readFile(folder, unique, path, modified)) {
      continue;
    }
    RawMessage raw;
    if (!takePostmark(raw)) {
      invalid_(path);
      continue;
    }
    raw.source = std::move(buffer_);
    buffer_.clear();
    raw.mailbox = mailbox;
    raw.path = std::move(path);
    raw.deliveredDate = deliveryTime(unique);
    raw.fileModified = modified;
    if (!message_(std::move(raw))) {
      return false;
    }
  }
  return true;
}

bool MaildirReader::read(const std::string& folder, const std::string& mailbox,
                         const std::string& subfolderPrefix) {
  if (!readMessages(folder, mailbox)) {
    return false;
  }
  std::vector<FolderEntry> entries;
  FolderListing::entries(folder, entries);
  std::vector<FolderEntry> inside;
  for (const FolderEntry& entry : entries) {
    if (!entry.folder || entry.name.size() < 2 || entry.name[0] != '.' || entry.name == "..") {
      continue;
    }
    if (FolderListing::entries(entry.path, inside) && isMaildir(inside) &&
        !readMessages(entry.path, subfolderPrefix + subfolderName(entry.name))) {
      return false;
    }
  }
  return true;
}

}  // namespace quillery::tools
