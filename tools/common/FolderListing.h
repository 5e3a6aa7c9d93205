#pragma once

#include <sys/types.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quillery::tools {

// One entry of a folder.
struct FolderEntry {
  std::string name;
  std::string path;
  bool folder = false;  // a folder, or a link to one
  bool link = false;    // a symbolic link
};

// Lists the folders of a mail store, and remembers which folders a walk has entered so that
// links (or two names for one folder) cannot make it go round in circles.
class FolderListing {
 public:
  // Replaces `out` with the entries of `folder` in name order (byte order). False, with `out`
  // empty, when the folder cannot be listed. An entry whose type cannot be told is a file.
  static bool entries(const std::string& folder, std::vector<FolderEntry>& out);

  // True the first time a folder (told by its device and inode, so also through a link) is
  // given, false after. A folder that cannot be examined counts as new: reading it will fail
  // and say so.
  bool firstVisit(const std::string& folder);

 private:
  std::set<std::pair<dev_t, ino_t>> seen_;
};

}  // namespace quillery::tools
