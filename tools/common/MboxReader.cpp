#include "common/MboxReader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "common/MboxPostmark.h"
#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

constexpr std::size_t kBlockSize = 4u << 20;
constexpr std::size_t kSmallestBlock = 64u << 10;
// Longer lines are taken in pieces of this size, so the buffer never grows past its block.
constexpr std::size_t kLongestPiece = 1u << 20;
// Postmark lines are short; a longer "From " line is body text and needs no copy.
constexpr std::size_t kLongestPostmark = 4096;

bool isBlank(std::string_view line) {
  return line == "\n" || line == "\r\n";
}

std::string_view withoutLineEnd(std::string_view line) {
  if (!line.empty() && line.back() == '\n') {
    line.remove_suffix(1);
  }
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  return line;
}

bool isQuotedFrom(std::string_view line) {
  std::size_t i = 0;
  while (i < line.size() && line[i] == '>') {
    ++i;
  }
  return i > 0 && line.substr(i, 5) == "From ";
}

std::optional<std::uint64_t> contentLengthValue(std::string_view line) {
  constexpr std::string_view kName = "Content-Length:";
  if (line.size() <= kName.size() || (line[0] != 'C' && line[0] != 'c') ||
      !MimeHeaders::equalsIgnoringCase(line.substr(0, kName.size()), kName)) {
    return std::nullopt;
  }
  std::uint64_t value = 0;
  bool digits = false;
  for (char c : withoutLineEnd(line.substr(kName.size()))) {
    if (c >= '0' && c <= '9') {
      value = value * 10 + static_cast<std::uint64_t>(c - '0');
      digits = true;
      if (value > (std::uint64_t{1} << 50)) {
        return std::nullopt;
      }
    } else if (c != ' ' && c != '\t') {
      return std::nullopt;
    }
  }
  return digits ? std::optional<std::uint64_t>(value) : std::nullopt;
}

}  // namespace

MboxReader::MboxReader(std::string path) : path_(std::move(path)) {}

MboxReader::~MboxReader() {
  if (fd_ >= 0) {
    ::close(fd_);
  }
}

bool MboxReader::open() {
  fd_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd_ < 0) {
    return false;
  }
  struct stat info {};
  if (::fstat(fd_, &info) != 0 || !S_ISREG(info.st_mode)) {
    ::close(fd_);
    fd_ = -1;
    return false;
  }
  fileSize_ = static_cast<std::uint64_t>(info.st_size);
  // A small file (a saved message, one of many in a folder) needs no block of its own size.
  buffer_.resize(static_cast<std::size_t>(
      std::clamp<std::uint64_t>(fileSize_ + 1, kSmallestBlock, kBlockSize)));
  return true;
}

bool MboxReader::fill() {
  if (eof_ || fd_ < 0) {
    return false;
  }
  if (begin_ > 0) {
    std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
    bufferOffset_ += begin_;
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ == buffer_.size()) {
    buffer_.resize(kBlockSize);  // the file grew since it was opened
  }
  for (;;) {
    const ssize_t got = ::read(fd_, buffer_.data() + end_, buffer_.size() - end_);
    if (got < 0 && errno == EINTR) {
      continue;
    }
    if (got < 0) {
      failed_ = true;
      eof_ = true;
      return false;
    }
    if (got == 0) {
      eof_ = true;
      return false;
    }
    end_ += static_cast<std::size_t>(got);
    return true;
  }
}

bool MboxReader::havePiece() {
  if (havePiece_) {
    return true;
  }
  std::size_t scanned = 0;  // bytes after begin_ known to hold no line end
  for (;;) {
    const std::size_t limit = std::min(end_ - begin_, kLongestPiece);
    const char* from = buffer_.data() + begin_;
    if (const void* nl = std::memchr(from + scanned, '\n', limit - scanned)) {
      pieceEnd_ = static_cast<std::size_t>(static_cast<const char*>(nl) - buffer_.data()) + 1;
      break;
    }
    scanned = limit;
    if (end_ - begin_ >= kLongestPiece) {
      pieceEnd_ = begin_ + kLongestPiece;
      break;
    }
    if (!fill()) {
      if (begin_ == end_) {
        return false;
      }
      pieceEnd_ = end_;  // the last line has no line end
      break;
    }
  }
  havePiece_ = true;
  return true;
}

MboxReader::Piece MboxReader::takePiece() {
  if (!havePiece()) {
    return {};
  }
  const Piece piece{std::string_view(buffer_.data() + begin_, pieceEnd_ - begin_), lineStart_};
  lineStart_ = buffer_[pieceEnd_ - 1] == '\n';
  begin_ = pieceEnd_;
  havePiece_ = false;
  return piece;
}

std::string_view MboxReader::peekPiece() {
  if (!havePiece()) {
    return {};
  }
  return {buffer_.data() + begin_, pieceEnd_ - begin_};
}

bool MboxReader::startFile() {
  started_ = true;
  if (!havePiece()) {
    return false;  // an empty file is an empty mailbox
  }
  if (end_ - begin_ >= 3 && std::memcmp(buffer_.data() + begin_, "\xEF\xBB\xBF", 3) == 0) {
    begin_ += 3;
    havePiece_ = false;
  }
  // Blank lines before the first postmark carry nothing.
  while (havePiece() && isBlank(peekPiece())) {
    takePiece();
  }
  if (!havePiece()) {
    return false;
  }
  std::string first(takePiece().text);
  const std::string_view next = peekPiece();
  // No message starts with "From ", so at the top of a file such a line is a postmark when a
  // header or a date vouches for it.
  if (MboxPostmark::startsLikePostmark(first) && (MboxPostmark::date(withoutLineEnd(first)) ||
                                                  MimeHeaders::isFieldLine(withoutLineEnd(next)))) {
    pendingPostmark_ = std::move(first);
    return true;
  }
  if (MimeHeaders::isFieldLine(withoutLineEnd(first))) {
    // A message saved without a postmark: its first line is read back as a header.
    wholeFile_ = true;
    pendingPostmark_ = std::move(first);
    return true;
  }
  notMail_ = true;
  return false;
}

std::optional<std::uint64_t> MboxReader::checkedContentLengthEnd(std::uint64_t bodyStart,
                                                                 std::uint64_t length) {
  const std::uint64_t target = bodyStart + length;
  if (target > fileSize_) {
    return std::nullopt;
  }
  if (target == fileSize_) {
    return target;
  }
  // Writers disagree on whether the length takes in the body's last line end, so up to two
  // line ends may stand between the body and the next postmark.
  char probe[16] = {};
  const ssize_t got = ::pread(fd_, probe, sizeof probe, static_cast<off_t>(target - 1));
  if (got < 1) {
    return std::nullopt;
  }
  std::string_view after(probe + 1, static_cast<std::size_t>(got - 1));
  char before = probe[0];
  for (int ends = 0; ends < 2; ++ends) {
    if (after.starts_with("From ") || (after.empty() && target + 16 > fileSize_)) {
      break;
    }
    const std::size_t eol = after.starts_with("\r\n") ? 2 : after.starts_with("\n") ? 1 : 0;
    if (eol == 0) {
      return std::nullopt;
    }
    before = '\n';
    after.remove_prefix(eol);
  }
  if (after.empty() && target + 16 > fileSize_) {
    return target;
  }
  if (before == '\n' && after.starts_with("From ")) {
    return target;
  }
  return std::nullopt;
}

void MboxReader::appendBodyLine(std::string& out, Piece piece) {
  std::string_view line = piece.text;
  if (piece.lineStart && line.size() > 5 && line[0] == '>' && isQuotedFrom(line)) {
    line.remove_prefix(1);
  }
  out.append(line.data(), line.size());
}

bool MboxReader::endsAtLength(std::string& out) {
  std::string blank;
  if (isBlank(peekPiece())) {
    blank = std::string(takePiece().text);
  }
  if (!havePiece()) {
    return true;
  }
  if (MboxPostmark::startsLikePostmark(peekPiece())) {
    pendingPostmark_ = std::string(takePiece().text);
    return true;
  }
  out += blank;  // the file changed since the length was checked: read on by postmarks
  return false;
}

bool MboxReader::beginMessage(MboxMessage& out) {
  const std::string postmark = std::move(*pendingPostmark_);
  pendingPostmark_.reset();
  if (wholeFile_) {
    out.source = postmark;
    while (havePiece()) {
      const std::string_view piece = takePiece().text;
      out.source.append(piece.data(), piece.size());
    }
    return false;
  }
  out.postmarkDate = MboxPostmark::date(withoutLineEnd(postmark));
  return true;
}

bool MboxReader::next(MboxMessage& out) {
  out.source.clear();
  out.postmarkDate.reset();
  if (fd_ < 0 || (started_ && !pendingPostmark_)) {
    return false;
  }
  if (!started_ && !startFile()) {
    return false;
  }
  if (!beginMessage(out)) {
    return !failed_;
  }
  bool inHeaders = true;
  bool prevBlank = false;
  std::size_t lastLineLength = 0;
  std::optional<std::uint64_t> contentLength;
  // From a Content-Length that checked out. A plain value beside a flag rather than an
  // optional: GCC's Release builds misread the optional as used uninitialised.
  bool haveBodyEnd = false;
  std::uint64_t bodyEnd = 0;
  while (havePiece()) {
    const std::uint64_t offset = offsetOf(begin_);
    if (haveBodyEnd && lineStart_ && offset >= bodyEnd) {
      // The length ends the body; a blank line may stand between it and the next postmark.
      if (endsAtLength(out.source)) {
        return !failed_;
      }
      haveBodyEnd = false;
      continue;
    }
    const Piece piece = takePiece();
    if (!haveBodyEnd && piece.lineStart && MboxPostmark::startsLikePostmark(piece.text) &&
        piece.text.size() < kLongestPostmark) {
      std::string candidate(piece.text);  // peeking may move the buffer under the piece
      if (MboxPostmark::isSeparator(withoutLineEnd(candidate), peekPiece(), prevBlank)) {
        if (prevBlank) {
          out.source.resize(out.source.size() - lastLineLength);
        }
        pendingPostmark_ = std::move(candidate);
        return true;
      }
      appendBodyLine(out.source, {candidate, true});
      prevBlank = false;
      lastLineLength = candidate.size();
      continue;
    }
    const bool blank = piece.lineStart && isBlank(piece.text);
    if (inHeaders && piece.lineStart) {
      if (blank) {
        inHeaders = false;
        if (contentLength) {
          const std::optional<std::uint64_t> end =
              checkedContentLengthEnd(offset + piece.text.size(), *contentLength);
          haveBodyEnd = end.has_value();
          bodyEnd = end.value_or(0);
        }
      } else if (!contentLength) {
        contentLength = contentLengthValue(piece.text);
      }
    }
    appendBodyLine(out.source, piece);
    prevBlank = blank;
    lastLineLength = piece.text.size();
  }
  if (prevBlank && !haveBodyEnd) {
    out.source.resize(out.source.size() - lastLineLength);
  }
  return !failed_;
}

}  // namespace quillery::tools
