#include "common/FolderListing.h"

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

namespace quillery::tools {

namespace fs = std::filesystem;

bool FolderListing::entries(const std::string& folder, std::vector<FolderEntry>& out) {
  out.clear();
  std::error_code ec;
  fs::directory_iterator it(folder, ec);
  if (ec) {
    return false;
  }
  for (fs::directory_iterator end; !ec && it != end; it.increment(ec)) {
    std::error_code typeError;
    FolderEntry entry;
    entry.name = it->path().filename().string();
    entry.path = it->path().string();
    entry.folder = it->is_directory(typeError);
    entry.link = it->is_symlink(typeError);
    out.push_back(std::move(entry));
  }
  std::sort(out.begin(), out.end(),
            [](const FolderEntry& a, const FolderEntry& b) { return a.name < b.name; });
  return true;
}

bool FolderListing::firstVisit(const std::string& folder) {
  struct stat info {};
  if (::stat(folder.c_str(), &info) != 0) {
    return true;
  }
  return seen_.emplace(info.st_dev, info.st_ino).second;
}

}  // namespace quillery::tools
