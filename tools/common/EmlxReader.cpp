#include "common/EmlxReader.h"

#include <cstdio>
#include <cstdlib>

#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

// The byte count of the first line ("17829     \n"), with the offset after that line.
std::optional<std::size_t> byteCount(std::string_view file, std::size_t& messageStart) {
  const std::size_t nl = file.find('\n');
  if (nl == std::string_view::npos || nl > 40) {
    return std::nullopt;
  }
  std::size_t value = 0;
  bool digits = false;
  for (std::size_t i = 0; i < nl; ++i) {
    const char c = file[i];
    if (c >= '0' && c <= '9') {
      if (value > (std::size_t{1} << 40)) {
        return std::nullopt;
      }
      value = value * 10 + static_cast<std::size_t>(c - '0');
      digits = true;
    } else if (c != ' ' && c != '\t' && c != '\r') {
      return std::nullopt;
    }
  }
  if (!digits) {
    return std::nullopt;
  }
  messageStart = nl + 1;
  return value;
}

std::string_view withoutCr(std::string_view line) {
  if (!line.empty() && line.back() == '\r') {
    line.remove_suffix(1);
  }
  return line;
}

bool startsPlist(std::string_view rest) {
  while (!rest.empty() && (rest.front() == '\n' || rest.front() == '\r' || rest.front() == ' ')) {
    rest.remove_prefix(1);
  }
  return rest.substr(0, 5) == "<?xml";
}

// Whether an "<?xml" at `pos` opens the trailing property list: a plist follows the
// declaration at once, and only blanks follow its end (a plist quoted inside the message is
// followed by the rest of the message). A trailer cut short has no end and is accepted.
bool isTrailer(std::string_view file, std::size_t pos) {
  const std::size_t plist = file.find("<plist", pos);
  if (plist == std::string_view::npos || plist - pos > 400) {
    return false;
  }
  const std::size_t close = file.find("</plist>", plist);
  if (close == std::string_view::npos) {
    return true;
  }
  return file.find_first_not_of(" \t\r\n", close + 8) == std::string_view::npos;
}

// The start of the trailing property list when the byte count does not lead to it.
std::size_t findPlist(std::string_view file, std::size_t from) {
  std::size_t pos = file.rfind("<?xml");
  while (pos != std::string_view::npos && pos >= from) {
    if (isTrailer(file, pos)) {
      return pos;
    }
    if (pos == 0) {
      break;
    }
    pos = file.rfind("<?xml", pos - 1);
  }
  return std::string_view::npos;
}

std::optional<std::time_t> isoDate(std::string_view text) {
  int y = 0, mo = 0, d = 0, h = 0, mi = 0, s = 0;
  const std::string copy(text.substr(0, 32));
  if (std::sscanf(copy.c_str(), "%d-%d-%dT%d:%d:%d", &y, &mo, &d, &h, &mi, &s) != 6) {
    return std::nullopt;
  }
  std::tm tm{};
  tm.tm_year = y - 1900;
  tm.tm_mon = mo - 1;
  tm.tm_mday = d;
  tm.tm_hour = h;
  tm.tm_min = mi;
  tm.tm_sec = s;
  return ::timegm(&tm);
}

}  // namespace

std::optional<std::time_t> EmlxReader::plistDate(std::string_view plist, std::string_view key) {
  const std::string keyElement = "<key>" + std::string(key) + "</key>";
  std::size_t pos = plist.find(keyElement);
  if (pos == std::string_view::npos) {
    return std::nullopt;
  }
  pos = plist.find('<', pos + keyElement.size());
  if (pos == std::string_view::npos) {
    return std::nullopt;
  }
  const std::size_t close = plist.find('>', pos);
  const std::size_t valueEnd = plist.find('<', close == std::string_view::npos ? pos + 1 : close);
  if (close == std::string_view::npos || valueEnd == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view tag = plist.substr(pos + 1, close - pos - 1);
  const std::string value(plist.substr(close + 1, valueEnd - close - 1));
  if (tag == "integer" || tag == "real") {
    char* end = nullptr;
    const double seconds = std::strtod(value.c_str(), &end);
    if (end == value.c_str() || seconds < 0 || seconds > 1e11) {
      return std::nullopt;
    }
    return static_cast<std::time_t>(seconds);
  }
  if (tag == "date") {
    return isoDate(value);
  }
  return std::nullopt;
}

std::optional<EmlxContent> EmlxReader::parse(std::string_view file) {
  EmlxContent content;
  std::size_t start = 0;
  const std::optional<std::size_t> count = byteCount(file, start);
  std::size_t end = std::string_view::npos;
  std::size_t plistStart = std::string_view::npos;
  if (count && *count <= file.size() - start && startsPlist(file.substr(start + *count))) {
    end = start + *count;
    plistStart = end;
  } else {
    plistStart = findPlist(file, start);
    end = plistStart == std::string_view::npos ? file.size() : plistStart;
    content.truncated = count && plistStart == std::string_view::npos && *count > end - start;
  }
  std::string_view message = file.substr(start, end - start);
  std::size_t lead = 0;
  while (lead < message.size() && (message[lead] == '\n' || message[lead] == '\r')) {
    ++lead;
  }
  const std::size_t firstEnd = message.find('\n', lead);
  const std::string_view firstLine = message.substr(
      lead, firstEnd == std::string_view::npos ? message.size() - lead : firstEnd - lead);
  message.remove_prefix(lead);
  if (firstLine.substr(0, 5) == "From " && firstEnd != std::string_view::npos) {
    // An mbox postmark left in front of the headers is not part of the message.
    message.remove_prefix(firstEnd + 1 - lead);
  } else if (!MimeHeaders::isFieldLine(withoutCr(firstLine))) {
    return std::nullopt;
  }
  if (message.empty()) {
    return std::nullopt;
  }
  content.source.assign(message.data(), message.size());
  if (plistStart != std::string_view::npos) {
    const std::string_view plist = file.substr(plistStart);
    content.dateSent = plistDate(plist, "date-sent");
    content.dateReceived = plistDate(plist, "date-received");
  }
  return content;
}

}  // namespace quillery::tools
