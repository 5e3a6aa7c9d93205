#include "common/ChosenFolder.h"

#include <filesystem>
#include <set>
#include <string_view>

#include "common/MailTree.h"

namespace quillery::tools {
namespace {

namespace fs = std::filesystem;

// Deep enough for any mail client's nesting; a bound all the same.
constexpr int kDeepestFolder = 16;

enum class Kind {
  Maildir,
  AppleMailbox,
  ThunderbirdHome,
  ThunderbirdProfile,
  ThunderbirdAccount,
  Plain
};

bool holds(const std::vector<FolderEntry>& entries, bool folder, std::string_view name) {
  for (const FolderEntry& e : entries) {
    if (e.folder == folder && e.name == name) {
      return true;
    }
  }
  return false;
}

bool holdsEnding(const std::vector<FolderEntry>& entries, bool folder, std::string_view suffix) {
  for (const FolderEntry& e : entries) {
    if (e.folder == folder && e.name.size() > suffix.size() && e.name.ends_with(suffix)) {
      return true;
    }
  }
  return false;
}

// The last name of a folder's path, also when the path ends in "/".
std::string folderName(const std::string& folder) {
  const fs::path normal = fs::path(folder).lexically_normal();
  return (normal.has_filename() ? normal : normal.parent_path()).filename().string();
}

bool isAppleMailbox(const std::string& folder, const std::vector<FolderEntry>& entries) {
  if (holds(entries, true, "Messages") || holds(entries, false, "Info.plist") ||
      holds(entries, false, "table_of_contents")) {
    return true;
  }
  // An exported mailbox "X.mbox/mbox", or one whose messages lie in hashed folders below.
  return MailTree::isMailboxName(folderName(folder)) &&
         (holds(entries, false, "mbox") || !MailTree::messageFolders(folder).empty());
}

Kind kindOf(const std::string& folder, const std::vector<FolderEntry>& entries) {
  if (MaildirReader::isMaildir(entries)) {
    return Kind::Maildir;
  }
  if (isAppleMailbox(folder, entries)) {
    return Kind::AppleMailbox;
  }
  if (holds(entries, false, "profiles.ini")) {
    return Kind::ThunderbirdHome;
  }
  if (holds(entries, false, "prefs.js") &&
      (holds(entries, true, "Mail") || holds(entries, true, "ImapMail"))) {
    return Kind::ThunderbirdProfile;
  }
  if (holdsEnding(entries, false, ".msf") || holdsEnding(entries, true, ".sbd")) {
    return Kind::ThunderbirdAccount;
  }
  return Kind::Plain;
}

// What a Thunderbird account folder keeps beside its mailboxes: indexes, filters, logs.
bool isClientFile(std::string_view name) {
  for (std::string_view suffix : {".msf", ".dat", ".json", ".sqlite", ".html", ".js", ".log",
                                  ".bak", ".mozlz4", ".ini", ".txt", ".xml"}) {
    if (name.ends_with(suffix)) {
      return true;
    }
  }
  return false;
}

bool hidden(const FolderEntry& entry) {
  return entry.name.starts_with(".");
}

// The folders of a Thunderbird folder (~/.thunderbird, a profile) that hold mail.
bool wanted(Kind kind, const FolderEntry& folder) {
  if (kind == Kind::ThunderbirdHome) {
    std::error_code ec;
    return fs::is_regular_file(folder.path + "/prefs.js", ec);
  }
  return folder.name == "Mail" || folder.name == "ImapMail";
}

std::string joined(const std::vector<std::string>& names) {
  std::string out;
  for (const std::string& name : names) {
    out += (out.empty() ? "" : "/") + name;
  }
  return out;
}

}  // namespace

ChosenFolder::ChosenFolder(const MessageSink& message, const InvalidSink& invalid,
                           const SearchingSink& searching)
    : invalid_(invalid),
      searching_(searching),
      reader_(message, invalid),
      maildirs_(message, invalid) {}

bool ChosenFolder::read(const std::string& folder) {
  chosenName_ = MailTree::withoutMailboxSuffix(folderName(folder));
  Names names;
  return walk(folder, names, 0);
}

std::string ChosenFolder::mailboxOf(const Names& names) const {
  return names.empty() ? chosenName_ : joined(names);
}

bool ChosenFolder::walk(const std::string& folder, Names& names, int depth) {
  if (depth > kDeepestFolder || !visited_.firstVisit(folder)) {
    return true;
  }
  if (searching_) {
    searching_();
  }
  std::vector<FolderEntry> entries;
  if (!FolderListing::entries(folder, entries)) {
    invalid_(folder);
    return true;
  }
  const Kind kind = kindOf(folder, entries);
  switch (kind) {
    case Kind::Maildir:
      return walkMaildir(folder, entries, names, depth);
    case Kind::AppleMailbox:
      return walkAppleMailbox(folder, mailboxOf(names));
    case Kind::ThunderbirdHome:  // its profiles, not its crash reports
    case Kind::ThunderbirdProfile:
      for (const FolderEntry& e : entries) {
        if (e.folder && wanted(kind, e) && !walkInto(e, names, depth)) {
          return false;
        }
      }
      return true;
    case Kind::ThunderbirdAccount: {
      Names account;  // Thunderbird's folder paths start at the account
      return walkThunderbirdAccount(folder, account, depth);
    }
    case Kind::Plain:
      break;
  }
  return walkPlain(entries, names, depth);
}

bool ChosenFolder::walkInto(const FolderEntry& sub, Names& names, int depth) {
  names.push_back(MailTree::withoutMailboxSuffix(sub.name));
  const bool go = walk(sub.path, names, depth + 1);
  names.pop_back();
  return go;
}

bool ChosenFolder::walkMaildir(const std::string& folder, const std::vector<FolderEntry>& entries,
                               Names& names, int depth) {
  const std::string mailbox = mailboxOf(names);
  if (!maildirs_.read(folder, mailbox, names.empty() ? "" : mailbox + "/")) {
    return false;
  }
  for (const FolderEntry& e : entries) {
    if (e.folder && !hidden(e) && e.name != "cur" && e.name != "new" && e.name != "tmp" &&
        !walkInto(e, names, depth)) {
      return false;
    }
  }
  return true;
}

bool ChosenFolder::walkAppleMailbox(const std::string& folder, const std::string& mailbox) {
  if (!reader_.readMailboxFolder(folder, mailbox)) {
    return false;
  }
  for (const MailboxFolder& box : MailTree::mailboxes(folder, invalid_)) {
    if (searching_) {
      searching_();
    }
    if (!reader_.readMailboxFolder(box.path, mailbox + "/" + joined(box.names))) {
      return false;
    }
  }
  return true;
}

bool ChosenFolder::walkPlain(const std::vector<FolderEntry>& entries, Names& names, int depth) {
  const std::string here = mailboxOf(names);
  for (const FolderEntry& e : entries) {
    if (e.folder || hidden(e)) {
      continue;
    }
    names.push_back(e.name);
    const std::string fileBox = joined(names);
    names.pop_back();
    const bool go = e.name.ends_with(".emlx") ? reader_.readEmlxFile(e.path, here)
                                              : reader_.readMboxFile(e.path, fileBox, here);
    if (!go) {
      return false;
    }
  }
  for (const FolderEntry& e : entries) {
    if (e.folder && !hidden(e) && !walkInto(e, names, depth)) {
      return false;
    }
  }
  return true;
}

bool ChosenFolder::walkThunderbirdAccount(const std::string& folder, Names& names, int depth) {
  std::vector<FolderEntry> entries;
  if (!FolderListing::entries(folder, entries)) {
    invalid_(folder);
    return true;
  }
  std::set<std::string, std::less<>> indexed;  // files with their ".msf" index beside them
  for (const FolderEntry& e : entries) {
    if (!e.folder && e.name.ends_with(".msf")) {
      indexed.insert(e.name.substr(0, e.name.size() - 4));
    }
  }
  for (const FolderEntry& e : entries) {
    if (hidden(e) || (!e.folder && !indexed.contains(e.name) && isClientFile(e.name))) {
      continue;
    }
    names.push_back(e.folder && e.name.ends_with(".sbd") ? e.name.substr(0, e.name.size() - 4)
                                                         : e.name);
    const std::string mailbox = joined(names);
    bool go = true;
    if (!e.folder) {
      const auto notMail =
          indexed.contains(e.name) ? MailboxReader::NotMail::Invalid : MailboxReader::NotMail::Skip;
      go = reader_.readMboxFile(e.path, mailbox, mailbox, notMail);
    } else if (e.name.ends_with(".sbd")) {
      go = depth >= kDeepestFolder || !visited_.firstVisit(e.path) ||
           walkThunderbirdAccount(e.path, names, depth + 1);
    } else {
      // An account in Maildir format keeps each folder as a Maildir.
      std::vector<FolderEntry> inside;
      go = !FolderListing::entries(e.path, inside) || !MaildirReader::isMaildir(inside) ||
           maildirs_.read(e.path, mailbox, mailbox + "/");
    }
    names.pop_back();
    if (!go) {
      return false;
    }
  }
  return true;
}

}  // namespace quillery::tools
