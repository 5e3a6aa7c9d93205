#include "domail/RecordFormat.h"

#include <cstring>

#include "common/TransferEncoder.h"
#include "domail/CharsetDecoder.h"
#include "domail/HeaderText.h"

namespace quillery::tools {
namespace {

constexpr std::size_t kAnnouncedBytes = 1000;

void tagLine(std::string_view tag, std::string_view value, std::string& out) {
  out += tag;
  out += value;
  out += '\n';
}

bool needsRawGuard(std::string_view line) {
  return line.starts_with("RAW:") || line.starts_with("ENDOFRAW:");
}

// Cuts `text` to at most `limit` bytes without splitting a UTF-8 sequence.
std::string_view utf8Prefix(std::string_view text, std::size_t limit) {
  if (text.size() <= limit) {
    return text;
  }
  std::size_t end = limit;
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) {
    --end;
  }
  return text.substr(0, end);
}

}  // namespace

void RecordFormat::appendGuardedLines(std::string_view text, std::string& out) {
  std::size_t pos = 0;
  while (pos < text.size()) {
    std::size_t end = text.find('\n', pos);
    if (end == std::string_view::npos) {
      end = text.size();
    }
    const std::string_view line = text.substr(pos, end - pos);
    if (line.starts_with("ENDOFEMAIL:")) {
      out += ' ';
    }
    out += line;
    if (line.ends_with("ENDOFBODY:") || line.ends_with("ENDATTACH:")) {
      out += ' ';
    }
    out += '\n';
    pos = end + 1;
  }
}

void RecordFormat::message(const ParsedMessage& m, std::string& out) {
  out.clear();
  tagLine("MAILBOX: ", m.mailbox, out);
  tagLine("FROM:", m.from, out);
  tagLine("TO:", m.to, out);
  tagLine("SUBJECT:", m.subject, out);
  tagLine("DATE:", m.date, out);
  tagLine("MAILTO:", m.mailto, out);
  out += "BODY:";
  if (m.body.empty()) {
    out += '\n';
  } else {
    appendGuardedLines(m.body, out);
  }
  out += "ENDOFBODY:\n";
  if (!m.attachments.empty()) {
    for (const ParsedAttachment& a : m.attachments) {
      out += "ATTACH:\n";
      tagLine("TYPE:", a.type, out);
      tagLine("FILENAME:", a.filename, out);
      tagLine("ENCODING:", a.base64 ? "base64" : "8bit", out);
      out += "BLOB:\n";
      if (a.base64 && a.preEncoded) {
        out += a.content;
      } else if (a.base64) {
        TransferEncoder::base64(a.content, "\n", out);
      } else {
        appendGuardedLines(a.content, out);
      }
      out += "ENDATTACH:\n";
    }
    out += "ENDATTACHMENTS:\n";
  }
  out += "ENDOFEMAIL:\n";
}

std::string_view RecordFormat::rawSource(std::string_view source, std::string& scratch) {
  // One search finds both markers: "RAW:" at a line start, or as the end of "ENDOFRAW:".
  bool guard = false;
  for (const char* at = source.data(); !guard;) {
    const std::size_t left = static_cast<std::size_t>(source.data() + source.size() - at);
    at = static_cast<const char*>(memmem(at, left, "RAW:", 4));
    if (!at) {
      break;
    }
    const std::size_t offset = static_cast<std::size_t>(at - source.data());
    guard = offset == 0 || source[offset - 1] == '\n' ||
            (offset >= 5 && source.substr(offset - 5, 5) == "ENDOF" &&
             (offset == 5 || source[offset - 6] == '\n'));
    at += 4;
  }
  if (!guard) {
    return source;
  }
  scratch.clear();
  scratch.reserve(source.size() + 16);
  std::size_t pos = 0;
  while (pos < source.size()) {
    std::size_t end = source.find('\n', pos);
    end = end == std::string_view::npos ? source.size() : end + 1;
    const std::string_view line = source.substr(pos, end - pos);
    if (needsRawGuard(line)) {
      scratch += ' ';
    }
    scratch += line;
    pos = end;
  }
  return scratch;
}

std::string_view RecordFormat::rawTail(std::string_view source) {
  return source.empty() || source.back() == '\n' ? "ENDOFRAW:\n" : "\nENDOFRAW:\n";
}

std::string RecordFormat::announcement(std::string_view path, std::string_view subject) {
  std::string cleanPath;
  CharsetDecoder::appendLenientUtf8(path, cleanPath);
  cleanPath = HeaderText::singleLine(cleanPath);
  std::string text(utf8Prefix(cleanPath, kAnnouncedBytes));
  text += '\n';
  text += utf8Prefix(subject, kAnnouncedBytes);
  if (text.ends_with("attachment\n") || text.ends_with("Looking for email")) {
    text += ' ';
  }
  return text;
}

}  // namespace quillery::tools
