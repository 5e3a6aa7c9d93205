#include "common/MailWalker.h"

#include <filesystem>
#include <functional>

#include "common/ChosenFolder.h"
#include "common/MailTree.h"
#include "common/MailboxReader.h"
#include "common/MailboxSelection.h"

namespace quillery::tools {
namespace {

namespace fs = std::filesystem;

std::string withoutLineEnd(std::string line) {
  while (!line.empty() && (line.back() == '\n' || line.back() == '\r')) {
    line.pop_back();
  }
  return line;
}

void searchingNow(const SearchingSink& searching) {
  if (searching) {
    searching();
  }
}

// The paths the application gave (a line end after one is ignored): a folder goes to
// `readFolder`, a file to the reader under its own name; a path that is neither (gone since
// it was chosen, or never there) is named invalid.
bool walkPaths(const std::vector<std::string>& paths, MailboxReader& reader,
               const InvalidSink& invalid, const SearchingSink& searching,
               const std::function<bool(const std::string& folder)>& readFolder) {
  for (const std::string& given : paths) {
    const std::string path = withoutLineEnd(given);
    if (path.empty()) {
      continue;
    }
    searchingNow(searching);
    std::error_code ec;
    if (fs::is_directory(path, ec)) {
      if (!readFolder(path)) {
        return false;
      }
    } else if (fs::is_regular_file(path, ec)) {
      if (!reader.readFile(path, fs::path(path).filename().string())) {
        return false;
      }
    } else {
      invalid(path);
    }
  }
  return true;
}

}  // namespace

bool walkMboxFiles(const std::vector<std::string>& paths, const MessageSink& message,
                   const InvalidSink& invalid, const SearchingSink& searching) {
  MailboxReader reader(message, invalid);
  ChosenFolder folders(message, invalid, searching);
  return walkPaths(paths, reader, invalid, searching,
                   [&](const std::string& folder) { return folders.read(folder); });
}

bool walkMailboxes(const std::vector<std::string>& mailboxLines, const MessageSink& message,
                   const InvalidSink& invalid, const SearchingSink& searching) {
  MailboxReader reader(message, invalid);
  return walkPaths(mailboxLines, reader, invalid, searching, [&](const std::string& folder) {
    return reader.readMailboxFolder(folder, MailTree::fromPath(folder).displayName);
  });
}

bool walkAccounts(const std::string& mailRoot, const std::vector<std::string>& accountNames,
                  const WalkOptions& options, const MessageSink& message,
                  const InvalidSink& invalid, const SearchingSink& searching) {
  std::vector<std::string> names;
  for (const std::string& name : accountNames) {
    names.push_back(withoutLineEnd(name));
  }
  MailboxReader reader(message, invalid);
  for (const std::string& account : MailTree(mailRoot).accountFolders(names)) {
    searchingNow(searching);
    for (const MailboxFolder& box : MailTree::mailboxes(account, invalid)) {
      if (!MailboxSelection::selected(box.names, options)) {
        continue;
      }
      searchingNow(searching);
      if (!reader.readMailboxFolder(box.path, box.displayName)) {
        return false;
      }
    }
  }
  return true;
}

std::vector<std::string> listMailboxes(const std::string& mailRoot,
                                       const std::vector<std::string>& accountNames) {
  std::vector<std::string> names;
  for (const std::string& name : accountNames) {
    names.push_back(withoutLineEnd(name));
  }
  std::vector<std::string> lines;
  for (const std::string& account : MailTree(mailRoot).accountFolders(names)) {
    for (const MailboxFolder& box : MailTree::mailboxes(account)) {
      // A line end inside a name cannot survive the one-per-line list.
      if (box.path.find_first_of("\r\n") != std::string::npos) {
        continue;
      }
      std::error_code ec;
      const fs::path absolute = fs::absolute(box.path, ec);
      lines.push_back((ec ? fs::path(box.path) : absolute).lexically_normal().string());
    }
  }
  return lines;
}

}  // namespace quillery::tools
