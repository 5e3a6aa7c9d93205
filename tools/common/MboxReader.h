#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillery::tools {

// One message of an mbox file: its RFC 822 source without the postmark line, the blank
// line that precedes the next postmark, and with one ">" taken off every ">From " line.
struct MboxMessage {
  std::string source;
  std::optional<std::time_t> postmarkDate;
};

// Splits an mbox file into messages while reading it in blocks of a few megabytes, so a file
// of many gigabytes costs no more memory than its largest message (a line longer than a
// megabyte is handled in pieces, so even a file without line ends stays within that bound). It
// handles mboxo and mboxrd quoting, Content-Length headers (mboxcl/cl2: a valid length lets a body
// hold unquoted "From " lines), CRLF files, a leading UTF-8 byte-order mark, and postmarks as
// MboxPostmark describes them. A file that starts with a header line instead of a postmark
// is a message saved on its own (.eml): the whole file, byte for byte, is that one message,
// and "From " lines inside it (a forwarded message's postmark) split nothing.
class MboxReader {
 public:
  explicit MboxReader(std::string path);
  ~MboxReader();
  MboxReader(const MboxReader&) = delete;
  MboxReader& operator=(const MboxReader&) = delete;

  // Opens the file; false when it cannot be opened as a regular file.
  bool open();

  // Replaces `out` with the next message and returns true; returns false at the end of the
  // file, on a read error (failed() then says so) and when the file does not start like an
  // mbox (notMail() then says so).
  bool next(MboxMessage& out);

  bool failed() const { return failed_; }
  // Whether the file is a message saved on its own (it opens with a header, not a postmark);
  // known once next() has been called.
  bool savedMessage() const { return wholeFile_; }
  bool notMail() const { return notMail_; }

 private:
  // A piece of the file as the reader takes it: a whole line with its "\n", the last line
  // without one, or (for a line longer than kLongestPiece) the next part of that line.
  struct Piece {
    std::string_view text;
    bool lineStart = false;  // the piece starts a line (only such pieces can be a postmark,
                             // a header or a blank line)
  };

  bool fill();
  bool havePiece();
  Piece takePiece();
  std::string_view peekPiece();
  std::uint64_t offsetOf(std::size_t index) const { return bufferOffset_ + index; }
  bool startFile();
  // Takes the pending postmark; in a file without one, reads the whole file into `out` and
  // returns false.
  bool beginMessage(MboxMessage& out);
  bool endsAtLength(std::string& out);
  std::optional<std::uint64_t> checkedContentLengthEnd(std::uint64_t bodyStart,
                                                       std::uint64_t length);
  static void appendBodyLine(std::string& out, Piece piece);

  std::string path_;
  int fd_ = -1;
  std::uint64_t fileSize_ = 0;
  std::vector<char> buffer_;
  std::size_t begin_ = 0;     // first unread byte in buffer_
  std::size_t end_ = 0;       // end of valid bytes in buffer_
  std::size_t pieceEnd_ = 0;  // end of the next piece, valid while havePiece_
  bool havePiece_ = false;
  bool lineStart_ = true;           // begin_ is at the start of a line
  std::uint64_t bufferOffset_ = 0;  // file offset of buffer_[0]
  bool eof_ = false;
  bool started_ = false;
  bool failed_ = false;
  bool notMail_ = false;
  std::optional<std::string> pendingPostmark_;  // postmark of the next message, if read
  bool wholeFile_ = false;                      // no postmark: the file is one message
};

}  // namespace quillery::tools
