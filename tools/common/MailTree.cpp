#include "common/MailTree.h"

#include <algorithm>
#include <filesystem>

#include "common/FolderListing.h"
#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

namespace fs = std::filesystem;

constexpr int kDeepestFolder = 12;

bool endsWithIgnoringCase(std::string_view s, std::string_view suffix) {
  return s.size() >= suffix.size() &&
         MimeHeaders::equalsIgnoringCase(s.substr(s.size() - suffix.size()), suffix);
}

// Sub-folders of `dir` by name order; false when `dir` cannot be listed. A symbolic link is
// followed only to a mailbox or "Messages" folder (someone moved a mailbox elsewhere), never
// to an arbitrary folder, which could lead anywhere in the file system.
bool subfolders(const fs::path& dir, std::vector<fs::path>& out) {
  std::vector<FolderEntry> entries;
  if (!FolderListing::entries(dir.string(), entries)) {
    return false;
  }
  for (const FolderEntry& entry : entries) {
    if (entry.folder &&
        (!entry.link || MailTree::isMailboxName(entry.name) || entry.name == "Messages")) {
      out.push_back(entry.path);
    }
  }
  return true;
}

std::string joined(const std::vector<std::string>& names) {
  std::string out;
  for (const std::string& n : names) {
    if (!out.empty()) {
      out += '/';
    }
    out += n;
  }
  return out;
}

// One walk down a tree: folders already seen (through a link or twice over) are not entered
// again, and folders that cannot be listed are reported.
struct TreeWalk {
  const MailTree::FolderSink& unreadable;
  FolderListing visited;

  bool firstVisit(const fs::path& dir) { return visited.firstVisit(dir.string()); }
  void cannotList(const fs::path& dir) const {
    if (unreadable) {
      unreadable(dir.string());
    }
  }
};

void collectMailboxes(const fs::path& dir, const std::string& account,
                      std::vector<std::string>& names, std::vector<MailboxFolder>& out, int depth,
                      TreeWalk& walk) {
  if (depth > kDeepestFolder) {
    return;
  }
  const bool insideMailbox = MailTree::isMailboxName(dir.lexically_normal().filename().string());
  std::vector<fs::path> subs;
  if (!subfolders(dir, subs)) {
    if (!insideMailbox) {
      walk.cannotList(dir);  // a mailbox folder is reported when its messages are read
    }
    return;
  }
  for (const fs::path& sub : subs) {
    const std::string name = sub.filename().string();
    if (MailTree::isSkippedName(name)) {
      continue;
    }
    const bool mailbox = MailTree::isMailboxName(name);
    // Inside a mailbox only nested mailboxes are mailboxes; the rest holds its messages.
    if ((insideMailbox && !mailbox) || !walk.firstVisit(sub)) {
      continue;
    }
    names.push_back(mailbox ? MailTree::withoutMailboxSuffix(name) : name);
    if (mailbox) {
      out.push_back({sub.string(), names, account + "/" + joined(names)});
    }
    collectMailboxes(sub, account, names, out, depth + 1, walk);
    names.pop_back();
  }
}

void collectMessageFolders(const fs::path& dir, std::vector<std::string>& out, int depth,
                           TreeWalk& walk) {
  if (depth > kDeepestFolder) {
    return;
  }
  std::vector<fs::path> subs;
  if (!subfolders(dir, subs)) {
    walk.cannotList(dir);
    return;
  }
  for (const fs::path& sub : subs) {
    const std::string name = sub.filename().string();
    if (name == "Attachments" || MailTree::isMailboxName(name) || MailTree::isSkippedName(name) ||
        !walk.firstVisit(sub)) {
      continue;
    }
    if (name == "Messages") {
      out.push_back(sub.string());
    } else {
      collectMessageFolders(sub, out, depth + 1, walk);
    }
  }
}

}  // namespace

bool MailTree::isMailboxName(std::string_view name) {
  return (endsWithIgnoringCase(name, ".mbox") && name.size() > 5) ||
         (endsWithIgnoringCase(name, ".imapmbox") && name.size() > 9);
}

std::string MailTree::withoutMailboxSuffix(std::string_view name) {
  if (endsWithIgnoringCase(name, ".imapmbox")) {
    name.remove_suffix(9);
  } else if (endsWithIgnoringCase(name, ".mbox")) {
    name.remove_suffix(5);
  }
  return std::string(name);
}

bool MailTree::isVersionFolderName(std::string_view name) {
  if (name.size() < 2 || name.size() > 3 || name[0] != 'V') {
    return false;
  }
  int number = 0;
  for (char c : name.substr(1)) {
    if (c < '0' || c > '9') {
      return false;
    }
    number = number * 10 + (c - '0');
  }
  return number >= 2;
}

bool MailTree::isSkippedName(std::string_view name) {
  return name.empty() || name.front() == '.' || name == "MailData" || name == "Bundles" ||
         name.starts_with("Signatu");
}

std::vector<std::string> MailTree::accountFolders(const std::string& accountName) const {
  std::error_code ec;
  const fs::path root(root_);
  if (accountName.empty() || accountName.find('/') != std::string::npos ||
      isSkippedName(accountName)) {
    return {};
  }
  if (isVersionFolderName(accountName) && fs::is_directory(root / accountName, ec)) {
    std::vector<std::string> out;
    std::vector<fs::path> subs;
    subfolders(root / accountName, subs);
    for (const fs::path& sub : subs) {
      if (!isSkippedName(sub.filename().string())) {
        out.push_back(sub.string());
      }
    }
    return out;
  }
  std::vector<std::pair<int, fs::path>> versions;
  std::vector<fs::path> subs;
  subfolders(root, subs);
  for (const fs::path& sub : subs) {
    const std::string name = sub.filename().string();
    if (isVersionFolderName(name)) {
      versions.emplace_back(std::stoi(name.substr(1)), sub);
    }
  }
  std::sort(versions.begin(), versions.end(),
            [](const auto& a, const auto& b) { return a.first > b.first; });
  for (const auto& [number, folder] : versions) {
    if (fs::is_directory(folder / accountName, ec)) {
      return {(folder / accountName).string()};
    }
  }
  if (fs::is_directory(root / accountName, ec)) {
    return {(root / accountName).string()};
  }
  return {};
}

std::vector<std::string> MailTree::accountFolders(
    const std::vector<std::string>& accountNames) const {
  std::vector<std::string> out;
  const FolderSink none;
  TreeWalk walk{none, {}};
  for (const std::string& name : accountNames) {
    for (std::string& folder : accountFolders(name)) {
      if (walk.firstVisit(folder)) {
        out.push_back(std::move(folder));
      }
    }
  }
  return out;
}

std::vector<MailboxFolder> MailTree::mailboxes(const std::string& accountFolder,
                                               const FolderSink& unreadable) {
  std::vector<MailboxFolder> out;
  std::vector<std::string> names;
  const fs::path account(accountFolder);
  TreeWalk walk{unreadable, {}};
  walk.firstVisit(account);
  collectMailboxes(account, account.filename().string(), names, out, 0, walk);
  return out;
}

std::vector<std::string> MailTree::messageFolders(const std::string& mailboxFolder,
                                                  const FolderSink& unreadable) {
  std::vector<std::string> out;
  TreeWalk walk{unreadable, {}};
  walk.firstVisit(mailboxFolder);
  collectMessageFolders(fs::path(mailboxFolder), out, 0, walk);
  return out;
}

MailboxFolder MailTree::fromPath(const std::string& mailboxFolder) {
  std::vector<std::string> parts;
  for (const fs::path& part : fs::path(mailboxFolder).lexically_normal()) {
    const std::string s = part.string();
    if (!s.empty() && s != "/") {
      parts.push_back(s);
    }
  }
  std::size_t account = std::string::npos;
  for (std::size_t i = 0; i + 2 < parts.size(); ++i) {
    if (parts[i] == "Library" && parts[i + 1] == "Mail") {
      account = i + 2;
    }
  }
  if (account != std::string::npos && account + 1 < parts.size() &&
      isVersionFolderName(parts[account])) {
    ++account;
  }
  if (account == std::string::npos || account + 1 >= parts.size()) {
    // Outside a mail folder: the folder above the outermost mailbox folder.
    std::size_t first = parts.size();
    while (first > 0 && isMailboxName(parts[first - 1])) {
      --first;
    }
    account = first > 0 ? first - 1 : std::string::npos;
  }
  MailboxFolder folder;
  folder.path = mailboxFolder;
  const std::size_t from = account == std::string::npos ? 0 : account + 1;
  for (std::size_t i = from; i < parts.size(); ++i) {
    folder.names.push_back(withoutMailboxSuffix(parts[i]));
  }
  folder.displayName = joined(folder.names);
  if (account != std::string::npos) {
    folder.displayName =
        parts[account] + (folder.displayName.empty() ? "" : "/") + folder.displayName;
  }
  return folder;
}

}  // namespace quillery::tools
