#pragma once

#include <string>
#include <vector>

namespace quillery::tools::test {

// A message record split as the store run's reader splits it: a body ends at the first line
// that ends with "ENDOFBODY:", an attachment's blob at the first line that ends with
// "ENDATTACH:", the record at a line that begins with "ENDOFEMAIL:". Values are trimmed as
// the archive stores them.
struct StoredRecord {
  struct Attachment {
    std::string type, filename, encoding, blob;
    std::string bytes() const;  // the blob base64-decoded when the encoding says so
  };
  std::string mailbox, from, to, subject, date, mailto, body;
  std::vector<Attachment> attachments;
  bool ended = false;  // the ENDOFEMAIL: line was reached

  // Every field in one line of text, "MAILBOX|FROM|TO|SUBJECT|DATE|MAILTO|BODY", then
  // "|FILENAME TYPE ENCODING BYTES" for each attachment: records compared whole.
  std::string whole() const;

  static StoredRecord read(const std::string& text);
  // The source as the raw-file reader rebuilds it: "RAW:" lines skipped, up to "ENDOFRAW:".
  static std::string readRaw(const std::string& text);
};

}  // namespace quillery::tools::test
