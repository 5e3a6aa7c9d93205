#pragma once

#include <ctime>
#include <functional>
#include <string>

#include "common/RawMessage.h"
#include "domail/AddressText.h"
#include "domail/BodyCollector.h"
#include "domail/CharsetDecoder.h"
#include "domail/HeaderText.h"
#include "domail/ParsedMessage.h"

typedef struct _GMimeParserOptions GMimeParserOptions;

namespace quillery::tools {

// Turns one message as a mail store holds it into the record that the application stores:
// MAILBOX is the store's display path, or for a message of an mbox file that carries Gmail's
// labels, the label GmailLabels::mailbox picks; FROM the decoded sender ("Name <address>"; the
// Sender header when there is no From); TO the decoded To recipients joined with ", "; SUBJECT the
// decoded subject; DATE the send date (MessageDate's fallbacks) in local time; MAILTO the
// Reply-To address, else the sender's address; the body and attachments as BodyCollector
// gathers them. Every header value is one line of valid UTF-8; where a message has several
// of one header, the first counts. Undecodable bytes never fail a conversion. A source that
// does not open with a header block (text between two postmarks of an mbox file) is a
// message without headers: FROM, TO, SUBJECT and MAILTO are empty, the text is the body and
// DATE comes from the store (MessageDate's fallbacks after the headers: the postmark's date,
// else the file's modification time).
class MessageConverter {
 public:
  // `now` is the date of last resort, for a message that carries no date at all.
  MessageConverter(PartOptions options, std::time_t now);
  ~MessageConverter();
  MessageConverter(const MessageConverter&) = delete;
  MessageConverter& operator=(const MessageConverter&) = delete;

  // Fills `out` and returns true; returns false (out unspecified) only when GMime finds no
  // message in the source. `onPartWork` as BodyCollector::collect describes.
  bool convert(const RawMessage& raw, ParsedMessage& out,
               const std::function<void()>& onPartWork = {});

  // The message's DATE value alone, read from its headers without parsing the MIME parts.
  std::string dateText(const RawMessage& raw) const;

 private:
  PartOptions options_;
  std::time_t now_;
  GMimeParserOptions* parserOptions_;
  CharsetDecoder decoder_;
  HeaderText headerText_;
  AddressText addresses_;
  BodyCollector collector_;
  std::string headerless_;  // a source without headers, behind an empty header block
};

}  // namespace quillery::tools
