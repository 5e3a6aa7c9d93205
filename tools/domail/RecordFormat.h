#pragma once

#include <string>
#include <string_view>

#include "domail/ParsedMessage.h"

namespace quillery::tools {

// The texts that pass from the tool to the application: the message record, the raw-source
// record and the announcement. Message text can never end a record early: the application
// ends a body at a line that ends with "ENDOFBODY:" and an attachment at one that ends with
// "ENDATTACH:", so such a line of the message gets one trailing blank; a line that begins
// with "ENDOFEMAIL:" gets one leading blank. In the raw record, a source line that begins
// with "RAW:" or "ENDOFRAW:" (which the reader would skip or stop at) gets one leading blank;
// every other byte of the source is kept.
class RecordFormat {
 public:
  // Replaces `out` with the record: MAILBOX, FROM, TO, SUBJECT, DATE, MAILTO, the body
  // between BODY: and ENDOFBODY:, the attachment section when there are attachments (each
  // with TYPE, FILENAME, ENCODING "base64" or "8bit", BLOB: and its lines, ENDATTACH:), and
  // ENDOFEMAIL:.
  static void message(const ParsedMessage& m, std::string& out);

  // The raw record is "RAW:\n", the source, a line end when the source lacks a last one, and
  // "ENDOFRAW:\n". Returns the source to write between head and tail: `source` itself when it
  // needs no guard (the common case, without copying), else a guarded copy kept in `scratch`.
  static std::string_view rawSource(std::string_view source, std::string& scratch);
  static constexpr std::string_view kRawHead = "RAW:\n";
  static std::string_view rawTail(std::string_view source);

  // "path\nsubject" in valid UTF-8, each at most 1,000 bytes, never ending in a status text
  // ("attachment\n", "Looking for email") that would keep the application from answering.
  static std::string announcement(std::string_view path, std::string_view subject);

  // Appends `text` as lines, guarded as above, each ending in "\n".
  static void appendGuardedLines(std::string_view text, std::string& out);
};

}  // namespace quillery::tools
