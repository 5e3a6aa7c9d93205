#include "StoredRecord.h"

#include <map>
#include <sstream>

#include "domail/Base64Text.h"

namespace quillery::tools::test {
namespace {

std::string trimmed(const std::string& s) {
  const std::size_t first = s.find_first_not_of(" \t\r\n");
  return first == std::string::npos ? std::string()
                                    : s.substr(first, s.find_last_not_of(" \t\r\n") - first + 1);
}

}  // namespace

std::string StoredRecord::Attachment::bytes() const {
  return encoding.find("base64") == std::string::npos ? blob : Base64Text::decode(blob);
}

std::string StoredRecord::whole() const {
  std::string out =
      mailbox + "|" + from + "|" + to + "|" + subject + "|" + date + "|" + mailto + "|" + body;
  for (const Attachment& a : attachments) {
    out += "|" + a.filename + " " + a.type + " " + a.encoding + " " + a.bytes();
  }
  return out;
}

StoredRecord StoredRecord::read(const std::string& text) {
  static const std::map<std::string, std::string StoredRecord::*> kHeaders = {
      {"MAILBOX:", &StoredRecord::mailbox}, {"FROM:", &StoredRecord::from},
      {"TO:", &StoredRecord::to},           {"SUBJECT:", &StoredRecord::subject},
      {"DATE:", &StoredRecord::date},       {"MAILTO:", &StoredRecord::mailto}};
  static const std::map<std::string, std::string Attachment::*> kAttachmentFields = {
      {"TYPE:", &Attachment::type},
      {"FILENAME:", &Attachment::filename},
      {"ENCODING:", &Attachment::encoding}};
  StoredRecord r;
  std::istringstream in(text);
  std::string line;
  // The lines up to the one that ends with `marker`, which is dropped.
  auto until = [&](const char* marker) {
    std::string lines;
    while (std::getline(in, line) && !line.ends_with(marker)) {
      lines += line + "\n";
    }
    return lines;
  };
  while (std::getline(in, line) && !(r.ended = line.starts_with("ENDOFEMAIL:"))) {
    const std::string key = line.substr(0, line.find(':') + 1);
    if (key == "BODY:") {
      const std::string first = line.substr(key.size()) + "\n";
      r.body = trimmed(first + until("ENDOFBODY:"));
    } else if (key == "ATTACH:") {
      r.attachments.emplace_back();
    } else if (key == "BLOB:" && !r.attachments.empty()) {
      r.attachments.back().blob = until("ENDATTACH:");
    } else if (kHeaders.count(key)) {
      r.*kHeaders.at(key) = trimmed(line.substr(key.size()));
    } else if (kAttachmentFields.count(key) && !r.attachments.empty()) {
      r.attachments.back().*kAttachmentFields.at(key) = trimmed(line.substr(key.size()));
    }
  }
  return r;
}

std::string StoredRecord::readRaw(const std::string& text) {
  std::istringstream in(text);
  std::string source;
  for (std::string line; std::getline(in, line) && !line.starts_with("ENDOFRAW:");) {
    if (!line.starts_with("RAW:")) {
      source += line + "\n";
    }
  }
  return source;
}

}  // namespace quillery::tools::test
