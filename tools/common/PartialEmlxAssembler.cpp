#include "common/PartialEmlxAssembler.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <vector>

#include "common/FileBytes.h"
#include "common/MimeHeaders.h"
#include "common/TransferEncoder.h"

namespace quillery::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kAppleLength = "X-Apple-Content-Length";
// Deeper nesting than this is not real mail; the rest is kept as it stands.
constexpr int kDeepestNesting = 50;

std::string childId(const std::string& parent, int index) {
  return parent.empty() ? std::to_string(index) : parent + "." + std::to_string(index);
}

// The headers without the X-Apple-Content-Length field and its continuation lines.
std::string withoutAppleLength(std::string_view headers) {
  std::string out;
  out.reserve(headers.size());
  bool skipping = false;
  std::size_t pos = 0;
  while (pos < headers.size()) {
    const std::size_t nl = headers.find('\n', pos);
    const std::size_t end = nl == std::string_view::npos ? headers.size() : nl + 1;
    const std::string_view line = headers.substr(pos, end - pos);
    const bool continuation = !line.empty() && (line[0] == ' ' || line[0] == '\t');
    if (!continuation) {
      skipping = line.size() > kAppleLength.size() && line[kAppleLength.size()] == ':' &&
                 MimeHeaders::equalsIgnoringCase(line.substr(0, kAppleLength.size()), kAppleLength);
    }
    if (!skipping) {
      out.append(line);
    }
    pos = end;
  }
  return out;
}

bool isBase64Text(std::string_view data) {
  for (char c : data) {
    const bool ok = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
                    c == '+' || c == '/' || c == '=' || c == '\r' || c == '\n' || c == ' ';
    if (!ok) {
      return false;
    }
  }
  return true;
}

// Whether stored text can stand as quoted-printable: short lines of printable ASCII, every
// "=" opening an escape or a soft line break. Anything else is data still to be encoded.
bool isQuotedPrintableText(std::string_view data) {
  constexpr std::size_t kLongestLine = 78;
  std::size_t column = 0;
  for (std::size_t i = 0; i < data.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(data[i]);
    if (c == '\n') {
      column = 0;
      continue;
    }
    if (++column > kLongestLine || (c < ' ' && c != '\t' && c != '\r') || c > '~') {
      return false;
    }
    if (c == '=') {
      const std::string_view next = data.substr(i + 1, 2);
      const bool hex = next.size() == 2 && std::isxdigit(static_cast<unsigned char>(next[0])) &&
                       std::isxdigit(static_cast<unsigned char>(next[1]));
      const bool softBreak = next.starts_with('\n') || next.starts_with("\r\n") || next.empty();
      if (!hex && !softBreak) {
        return false;
      }
    }
  }
  return true;
}

// The position of the next delimiter line "--boundary" at or after `from`, at a line start.
std::size_t findDelimiter(std::string_view body, std::string_view dashBoundary, std::size_t from) {
  std::size_t pos = from;
  while (pos < body.size()) {
    const std::size_t hit = body.find(dashBoundary, pos);
    if (hit == std::string_view::npos) {
      return std::string_view::npos;
    }
    const bool lineStart = hit == 0 || body[hit - 1] == '\n';
    const std::size_t after = hit + dashBoundary.size();
    const bool ends = after == body.size() || body[after] == '-' || body[after] == '\r' ||
                      body[after] == '\n' || body[after] == ' ' || body[after] == '\t';
    if (lineStart && ends) {
      return hit;
    }
    pos = hit + 1;
  }
  return std::string_view::npos;
}

}  // namespace

PartialEmlxAssembler::PartLookup PartialEmlxAssembler::folderLookup(const std::string& messagesDir,
                                                                    const std::string& id) {
  return [messagesDir, id](const std::string& partId) -> std::optional<StoredPart> {
    std::error_code ec;
    const fs::path partDir = fs::path(messagesDir).parent_path() / "Attachments" / id / partId;
    if (fs::is_directory(partDir, ec)) {
      std::vector<fs::path> files;
      for (fs::directory_iterator it(partDir, ec), end; !ec && it != end; it.increment(ec)) {
        if (it->is_regular_file(ec)) {
          files.push_back(it->path());
        }
      }
      std::sort(files.begin(), files.end());
      StoredPart stored;
      if (!files.empty() && FileBytes::read(files.front().string(), stored.bytes)) {
        return stored;
      }
    }
    StoredPart stored;
    const fs::path emlxpart = fs::path(messagesDir) / (id + "." + partId + ".emlxpart");
    if (FileBytes::read(emlxpart.string(), stored.bytes)) {
      stored.alreadyEncoded = true;
      return stored;
    }
    return std::nullopt;
  };
}

std::string PartialEmlxAssembler::assemble(std::string_view source) {
  missing_ = 0;
  restored_ = 0;
  std::string out;
  out.reserve(source.size() * 2);
  message(source, "", out, 0);
  return out;
}

void PartialEmlxAssembler::message(std::string_view entity, const std::string& prefix,
                                   std::string& out, int depth) {
  const std::size_t headerEnd = MimeHeaders::headerEnd(entity);
  const std::string_view headers = entity.substr(0, headerEnd);
  const std::string_view body = entity.substr(headerEnd);
  const std::string type = MimeHeaders::value(headers, "Content-Type").value_or("");
  const auto boundary = MimeHeaders::parameter(type, "boundary");
  if (depth < kDeepestNesting && MimeHeaders::mediaType(type).starts_with("multipart/") &&
      boundary && !boundary->empty()) {
    out.append(headers);
    multipart(body, *boundary, prefix, out, depth + 1);
  } else {
    leaf(headers, body, prefix.empty() ? "1" : prefix + ".1", out);
  }
}

void PartialEmlxAssembler::part(std::string_view entity, const std::string& id, std::string& out,
                                int depth) {
  const std::size_t headerEnd = MimeHeaders::headerEnd(entity);
  const std::string_view headers = entity.substr(0, headerEnd);
  const std::string_view body = entity.substr(headerEnd);
  const std::string type = MimeHeaders::value(headers, "Content-Type").value_or("");
  const std::string media = MimeHeaders::mediaType(type);
  const auto boundary = MimeHeaders::parameter(type, "boundary");
  if (depth < kDeepestNesting && media.starts_with("multipart/") && boundary &&
      !boundary->empty()) {
    out.append(headers);
    multipart(body, *boundary, id, out, depth + 1);
  } else if (depth < kDeepestNesting && media == "message/rfc822" &&
             !MimeHeaders::value(headers, kAppleLength)) {
    out.append(headers);
    message(body, id, out, depth + 1);
  } else {
    leaf(headers, body, id, out);
  }
}

void PartialEmlxAssembler::multipart(std::string_view body, const std::string& boundary,
                                     const std::string& id, std::string& out, int depth) {
  const std::string dashBoundary = "--" + boundary;
  std::size_t delimiter = findDelimiter(body, dashBoundary, 0);
  if (delimiter == std::string_view::npos) {
    out.append(body);
    return;
  }
  out.append(body.substr(0, delimiter));  // preamble
  int index = 0;
  while (delimiter != std::string_view::npos) {
    const std::size_t lineEnd = body.find('\n', delimiter);
    const std::size_t childStart = lineEnd == std::string_view::npos ? body.size() : lineEnd + 1;
    const bool closing = body.substr(delimiter + dashBoundary.size(), 1) == "-";
    out.append(body.substr(delimiter, childStart - delimiter));
    if (closing) {
      out.append(body.substr(childStart));  // epilogue
      return;
    }
    const std::size_t next = findDelimiter(body, dashBoundary, childStart);
    std::size_t childEnd = next == std::string_view::npos ? body.size() : next;
    // The line break before a delimiter belongs to the delimiter.
    std::size_t eolLength = 0;
    if (next != std::string_view::npos && childEnd > childStart && body[childEnd - 1] == '\n') {
      eolLength = (childEnd - 1 > childStart && body[childEnd - 2] == '\r') ? 2 : 1;
    }
    childEnd -= eolLength;
    part(body.substr(childStart, childEnd - childStart), childId(id, ++index), out, depth);
    out.append(body.substr(childEnd, eolLength));
    delimiter = next;
  }
}

void PartialEmlxAssembler::leaf(std::string_view headers, std::string_view body,
                                const std::string& id, std::string& out) {
  if (!MimeHeaders::value(headers, kAppleLength)) {
    out.append(headers);
    out.append(body);
    return;
  }
  std::optional<StoredPart> stored = lookup_ ? lookup_(id) : std::nullopt;
  if (!stored) {
    ++missing_;
    out.append(headers);
    out.append(body);
    return;
  }
  ++restored_;
  const std::string_view eol = headers.find("\r\n") != std::string_view::npos ? "\r\n" : "\n";
  const std::string encoding = MimeHeaders::mediaType(
      MimeHeaders::value(headers, "Content-Transfer-Encoding").value_or("7bit"));
  out.append(withoutAppleLength(headers));
  if (!(headers.ends_with("\n\n") || headers.ends_with("\r\n\r\n"))) {
    // A part cut off inside its headers: close them before the data.
    out.append(headers.ends_with("\n") ? eol : std::string(eol) + std::string(eol));
  }
  if (encoding == "base64") {
    const std::size_t dataStart = out.size();
    if (stored->alreadyEncoded && isBase64Text(stored->bytes)) {
      out.append(stored->bytes);
    } else {
      TransferEncoder::base64(stored->bytes, eol, out);
    }
    // The line break before the next delimiter belongs to the delimiter, which brings it.
    if (out.size() >= dataStart + 2 && out.ends_with("\r\n")) {
      out.resize(out.size() - 2);
    } else if (out.size() > dataStart && out.ends_with('\n')) {
      out.pop_back();
    }
  } else if (encoding == "quoted-printable" &&
             !(stored->alreadyEncoded && isQuotedPrintableText(stored->bytes))) {
    TransferEncoder::quotedPrintable(stored->bytes, eol, out);
  } else {
    out.append(stored->bytes);
  }
}

}  // namespace quillery::tools
