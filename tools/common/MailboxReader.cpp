#include "common/MailboxReader.h"

#include <algorithm>
#include <filesystem>
#include <set>
#include <vector>

#include "common/EmlxReader.h"
#include "common/FileBytes.h"
#include "common/FolderListing.h"
#include "common/MailTree.h"
#include "common/MboxReader.h"
#include "common/PartialEmlxAssembler.h"

namespace quillery::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kPartialSuffix = ".partial.emlx";
constexpr std::string_view kEmlxSuffix = ".emlx";

bool onlyWhitespace(const std::string& s) {
  return s.find_first_not_of(" \t\r\n") == std::string::npos;
}

struct EmlxFile {
  unsigned long long number = 0;
  std::string id;
  std::string name;
  bool partial = false;
};

// "123.emlx" and "123.partial.emlx"; nothing else in a Messages folder is a message.
std::optional<EmlxFile> emlxFile(const std::string& name) {
  if (!name.ends_with(kEmlxSuffix) || name.starts_with(".")) {
    return std::nullopt;
  }
  EmlxFile file;
  file.name = name;
  file.partial = name.ends_with(kPartialSuffix);
  file.id = name.substr(0, name.size() - (file.partial ? kPartialSuffix : kEmlxSuffix).size());
  if (file.id.empty() || file.id.find('.') != std::string::npos) {
    return std::nullopt;
  }
  for (char c : file.id) {
    if (c < '0' || c > '9' || file.number > 1'000'000'000'000ull) {
      file.number = ~0ull;  // names that are not numbers sort last, by name
      break;
    }
    file.number = file.number * 10 + static_cast<unsigned>(c - '0');
  }
  return file;
}

}  // namespace

bool MailboxReader::readMboxFile(const std::string& path, const std::string& mailbox,
                                 const std::string& savedMailbox, NotMail notMail) {
  MboxReader reader(path);
  if (!reader.open()) {
    invalid_(path);
    return true;
  }
  const std::optional<std::time_t> modified = FileBytes::modified(path);
  MboxMessage one;
  while (reader.next(one)) {
    if (onlyWhitespace(one.source)) {
      continue;
    }
    RawMessage raw;
    raw.source = std::move(one.source);
    raw.mailbox = reader.savedMessage() ? savedMailbox : mailbox;
    raw.path = path;
    raw.postmarkDate = one.postmarkDate;
    raw.fileModified = modified;
    raw.labelsNameMailbox = true;
    if (!message_(std::move(raw))) {
      return false;
    }
  }
  if (reader.failed() || (reader.notMail() && notMail == NotMail::Invalid)) {
    invalid_(path);
  }
  return true;
}

bool MailboxReader::readFile(const std::string& path, const std::string& mailbox) {
  if (path.ends_with(kEmlxSuffix)) {
    return readEmlxFile(path, mailbox);
  }
  return readMboxFile(path, mailbox);
}

bool MailboxReader::readMailboxFolder(const std::string& folder, const std::string& mailbox) {
  std::error_code ec;
  fs::directory_iterator probe(folder, ec);
  if (ec) {
    invalid_(folder);
    return true;
  }
  const fs::path mboxFile = fs::path(folder) / "mbox";
  if (fs::is_regular_file(mboxFile, ec) && !readMboxFile(mboxFile.string(), mailbox)) {
    return false;
  }
  for (const std::string& messages : MailTree::messageFolders(folder, invalid_)) {
    if (!readMessagesFolder(messages, mailbox)) {
      return false;
    }
  }
  return true;
}

bool MailboxReader::readMessagesFolder(const std::string& folder, const std::string& mailbox) {
  std::vector<FolderEntry> entries;
  if (!FolderListing::entries(folder, entries)) {
    invalid_(folder);
    return true;
  }
  std::vector<EmlxFile> files;
  for (const FolderEntry& entry : entries) {
    if (auto file = emlxFile(entry.name)) {
      files.push_back(std::move(*file));
    }
  }
  std::sort(files.begin(), files.end(), [](const EmlxFile& a, const EmlxFile& b) {
    return a.number != b.number ? a.number < b.number : a.name < b.name;
  });
  std::set<std::string> complete;
  for (const EmlxFile& f : files) {
    if (!f.partial) {
      complete.insert(f.id);
    }
  }
  for (const EmlxFile& f : files) {
    if (f.partial && complete.count(f.id) > 0) {
      continue;  // the full copy holds the same message whole
    }
    if (!readEmlxFile((fs::path(folder) / f.name).string(), mailbox)) {
      return false;
    }
  }
  return true;
}

bool MailboxReader::readEmlxFile(const std::string& path, const std::string& mailbox) {
  std::time_t modified = 0;
  if (!FileBytes::read(path, buffer_, &modified)) {
    invalid_(path);
    return true;
  }
  std::optional<EmlxContent> content = EmlxReader::parse(buffer_);
  if (!content) {
    invalid_(path);
    return true;
  }
  RawMessage raw;
  const fs::path file(path);
  const std::string name = file.filename().string();
  if (name.ends_with(kPartialSuffix)) {
    const std::string id = name.substr(0, name.size() - kPartialSuffix.size());
    PartialEmlxAssembler assembler(
        PartialEmlxAssembler::folderLookup(file.parent_path().string(), id));
    raw.source = assembler.assemble(content->source);
  } else {
    raw.source = std::move(content->source);
  }
  raw.mailbox = mailbox;
  raw.path = path;
  raw.plistDateSent = content->dateSent;
  raw.plistDateReceived = content->dateReceived;
  raw.fileModified = modified;
  return message_(std::move(raw));
}

}  // namespace quillery::tools
