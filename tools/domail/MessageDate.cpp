#include "domail/MessageDate.h"

#include "common/MimeHeaders.h"
#include "domail/MailDate.h"

namespace quillery::tools {
namespace {

constexpr std::string_view kReceived = "Received:";

bool startsWithField(std::string_view line, std::string_view field) {
  return line.size() >= field.size() &&
         MimeHeaders::equalsIgnoringCase(line.substr(0, field.size()), field);
}

}  // namespace

std::optional<std::time_t> MessageDate::newestReceived(std::string_view headers) {
  std::size_t pos = 0;
  while (pos < headers.size()) {
    std::size_t end = headers.find('\n', pos);
    if (end == std::string_view::npos) {
      end = headers.size();
    }
    if (startsWithField(headers.substr(pos, end - pos), kReceived)) {
      // The field runs over its folded continuation lines.
      std::size_t fieldEnd = end;
      while (fieldEnd + 1 < headers.size() &&
             (headers[fieldEnd + 1] == ' ' || headers[fieldEnd + 1] == '\t')) {
        const std::size_t next = headers.find('\n', fieldEnd + 1);
        fieldEnd = next == std::string_view::npos ? headers.size() : next;
      }
      const std::string_view field = headers.substr(pos, fieldEnd - pos);
      const std::size_t semicolon = field.rfind(';');
      if (semicolon != std::string_view::npos) {
        if (std::optional<std::time_t> when = MailDate::parse(field.substr(semicolon + 1))) {
          return when;
        }
      }
      end = fieldEnd;
    }
    pos = end + 1;
  }
  return std::nullopt;
}

std::time_t MessageDate::of(const RawMessage& raw, std::string_view headers, std::time_t now) {
  if (std::optional<std::string> date = MimeHeaders::value(headers, "Date")) {
    if (std::optional<std::time_t> when = MailDate::parse(*date)) {
      return *when;
    }
  }
  if (raw.plistDateSent) {
    return *raw.plistDateSent;
  }
  if (std::optional<std::time_t> when = newestReceived(headers)) {
    return *when;
  }
  for (const std::optional<std::time_t>& store :
       {raw.postmarkDate, raw.deliveredDate, raw.plistDateReceived, raw.fileModified}) {
    if (store) {
      return *store;
    }
  }
  return now;
}

}  // namespace quillery::tools
