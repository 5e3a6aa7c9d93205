#include "common/MimeHeaders.h"

#include <cstring>

#include "common/AsciiText.h"

namespace quillery::tools {
namespace {

std::string_view trimmed(std::string_view s) {
  while (!s.empty() && (s.front() == ' ' || s.front() == '\t')) {
    s.remove_prefix(1);
  }
  while (!s.empty() &&
         (s.back() == ' ' || s.back() == '\t' || s.back() == '\r' || s.back() == '\n')) {
    s.remove_suffix(1);
  }
  return s;
}

}  // namespace

bool MimeHeaders::equalsIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) {
    return false;
  }
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (ascii::lower(a[i]) != ascii::lower(b[i])) {
      return false;
    }
  }
  return true;
}

std::size_t MimeHeaders::headerEnd(std::string_view entity) {
  std::size_t lineStart = 0;
  while (lineStart < entity.size()) {
    const char* nl = static_cast<const char*>(
        std::memchr(entity.data() + lineStart, '\n', entity.size() - lineStart));
    const std::size_t lineEnd = nl ? static_cast<std::size_t>(nl - entity.data()) : entity.size();
    std::string_view line = entity.substr(lineStart, lineEnd - lineStart);
    if (line.empty() || line == "\r") {
      return nl ? lineEnd + 1 : entity.size();
    }
    if (!nl) {
      break;
    }
    lineStart = lineEnd + 1;
  }
  return entity.size();
}

bool MimeHeaders::isFieldLine(std::string_view line) {
  std::size_t i = 0;
  for (; i < line.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(line[i]);
    if (c == ':') {
      return i > 0;
    }
    if (c <= ' ' || c >= 127) {
      return false;
    }
  }
  return false;
}

bool MimeHeaders::startsWithField(std::string_view entity) {
  std::size_t i = 0;
  while (i < entity.size() && static_cast<unsigned char>(entity[i]) > ' ' && entity[i] != ':' &&
         entity[i] != 127) {
    ++i;
  }
  if (i == 0) {
    return false;
  }
  while (i < entity.size() && (entity[i] == ' ' || entity[i] == '\t')) {
    ++i;
  }
  return i < entity.size() && entity[i] == ':';
}

std::optional<std::string> MimeHeaders::value(std::string_view headers, std::string_view name) {
  std::size_t pos = 0;
  while (pos < headers.size()) {
    const std::size_t nl = headers.find('\n', pos);
    const std::size_t end = nl == std::string_view::npos ? headers.size() : nl;
    const std::string_view line = headers.substr(pos, end - pos);
    if (line.size() > name.size() && line[name.size()] == ':' &&
        equalsIgnoringCase(line.substr(0, name.size()), name)) {
      std::string out(trimmed(line.substr(name.size() + 1)));
      // Folded continuation lines start with a blank.
      std::size_t next = end + 1;
      while (next < headers.size() && (headers[next] == ' ' || headers[next] == '\t')) {
        const std::size_t nl2 = headers.find('\n', next);
        const std::size_t end2 = nl2 == std::string_view::npos ? headers.size() : nl2;
        out += ' ';
        out += trimmed(headers.substr(next, end2 - next));
        next = end2 + 1;
      }
      return std::string(trimmed(out));
    }
    if (nl == std::string_view::npos) {
      break;
    }
    pos = nl + 1;
  }
  return std::nullopt;
}

std::optional<std::string> MimeHeaders::parameter(std::string_view value, std::string_view name) {
  std::size_t pos = value.find(';');
  while (pos != std::string_view::npos) {
    std::size_t start = pos + 1;
    while (start < value.size() && (value[start] == ' ' || value[start] == '\t')) {
      ++start;
    }
    const std::size_t eq = value.find('=', start);
    if (eq == std::string_view::npos) {
      return std::nullopt;
    }
    const std::string_view key = trimmed(value.substr(start, eq - start));
    std::size_t vStart = eq + 1;
    while (vStart < value.size() && (value[vStart] == ' ' || value[vStart] == '\t')) {
      ++vStart;
    }
    std::string result;
    std::size_t after = vStart;
    if (vStart < value.size() && value[vStart] == '"') {
      after = vStart + 1;
      while (after < value.size() && value[after] != '"') {
        if (value[after] == '\\' && after + 1 < value.size()) {
          ++after;
        }
        result += value[after++];
      }
      pos = value.find(';', after);
    } else {
      pos = value.find(';', vStart);
      result = std::string(trimmed(
          value.substr(vStart, (pos == std::string_view::npos ? value.size() : pos) - vStart)));
    }
    if (equalsIgnoringCase(key, name)) {
      return result;
    }
  }
  return std::nullopt;
}

std::string MimeHeaders::mediaType(std::string_view value) {
  std::string out;
  for (char c : value) {
    if (c == ';' || c == ' ' || c == '\t' || c == '\r' || c == '\n') {
      break;
    }
    out += ascii::lower(c);
  }
  return out;
}

}  // namespace quillery::tools
