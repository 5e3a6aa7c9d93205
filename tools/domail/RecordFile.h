#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

namespace quillery::tools {

// A record file (the message file or the raw file) that the tool rewrites for every message.
// It is opened once and rewritten in place (write from the start, then cut to the new
// length), which costs far less per message than creating the file anew. The file is
// readable by its owner only: it holds mail.
class RecordFile {
 public:
  explicit RecordFile(std::string path) : path_(std::move(path)) {}
  ~RecordFile();
  RecordFile(const RecordFile&) = delete;
  RecordFile& operator=(const RecordFile&) = delete;

  // Creates the file, or empties an existing one. False (errno set) when it cannot.
  bool open();
  // Makes the pieces, in order, the file's whole content. False (errno set) on a write
  // error, after which the file's content is undefined.
  bool rewrite(std::initializer_list<std::string_view> pieces);

  const std::string& path() const { return path_; }

 private:
  std::string path_;
  int fd_ = -1;
  long long size_ = 0;  // the file's length after the last rewrite
};

}  // namespace quillery::tools
