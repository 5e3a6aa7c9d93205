#pragma once

#include <string>
#include <vector>

namespace quillery::tools::test {

// A message record read back the way the store run reads it (line by line, a body ending at
// the first line that ends with "ENDOFBODY:", an attachment at one that ends with
// "ENDATTACH:", the record at a line that begins with "ENDOFEMAIL:"), so a test sees what
// the archive would receive. Values are trimmed as the archive stores them.
struct StoredRecord {
  struct Attachment {
    std::string type, filename, encoding, blob;
    std::string bytes() const;  // the blob base64-decoded when the encoding says so
  };
  std::string mailbox, from, to, subject, date, mailto, body;
  std::vector<Attachment> attachments;
  bool ended = false;  // the ENDOFEMAIL: line was reached

  static StoredRecord read(const std::string& text);
  // The source as the raw-file reader rebuilds it: "RAW:" lines skipped, up to "ENDOFRAW:".
  static std::string readRaw(const std::string& text);
  static bool validUtf8(const std::string& text);
};

}  // namespace quillery::tools::test
