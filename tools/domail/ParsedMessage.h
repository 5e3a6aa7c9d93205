#pragma once

#include <ctime>
#include <string>
#include <vector>

namespace quillery::tools {

// One attachment as the record carries it. `content` holds the decoded bytes of a binary
// part (written out as base64), or, when `preEncoded`, that part's clean base64 lines as the
// message had them (each ending in "\n"), or the UTF-8 text of a text part (written as it is).
struct ParsedAttachment {
  std::string type;      // "image/png"
  std::string filename;  // decoded, one line, never empty
  bool base64 = true;
  bool preEncoded = false;
  std::string content;
};

// One message as the record stream hands it to the application: single-line UTF-8 header
// values and the readable body, with the attachments that the run asked for.
struct ParsedMessage {
  std::string mailbox;
  std::string from;
  std::string to;
  std::string subject;
  std::string date;  // "%Y-%m-%d %H:%M:%S", local time
  std::string mailto;
  std::string body;  // UTF-8, lines separated by "\n"
  std::vector<ParsedAttachment> attachments;
};

}  // namespace quillery::tools
