#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "domail/AddressText.h"
#include "domail/HeaderText.h"
#include "domail/ParsedMessage.h"

typedef struct _GMimeObject GMimeObject;
typedef struct _GMimePart GMimePart;
typedef struct _GMimeMessage GMimeMessage;

namespace quillery::tools {

// What a conversion writes besides the text.
struct PartOptions {
  bool attachments = false;  // every part that is not body text becomes an attachment
  bool htmlParts = false;    // HTML (".html") and enriched (".etf") parts too
};

// Walks the MIME tree of a parsed message and gathers its readable body and attachments.
// The body is every inline text/plain part in order; where a multipart/alternative offers
// plain text, its other renderings are not read into the body, and where it does not, its
// HTML (or enriched text) is turned into text. Nested messages add a short header block
// ("From:", "To:", "Date:", "Subject:") and their own body to the body, and their
// attachments to the message's. Attachments carry their decoded names, or a name made from
// their position ("part-2.1.jpg") when they have none; text attachments are decoded to
// UTF-8; binary ones keep clean base64 as it was and are decoded to bytes otherwise;
// application/ms-tnef is kept whole as "winmail.dat".
// Trees deeper than 32 levels are read down to that depth.
class BodyCollector {
 public:
  BodyCollector(HeaderText& text, AddressText& addresses, PartOptions options)
      : text_(text), addresses_(addresses), options_(options) {}

  // Fills out.body and out.attachments from the message's MIME part. `fallbackCharset`
  // reads undeclared 8-bit text; `onPartWork` is called once, before the first attachment
  // or HTML part is prepared.
  void collect(GMimeMessage* message, std::string_view fallbackCharset, ParsedMessage& out,
               const std::function<void()>& onPartWork);

  // The raw value of the first header `name` of a message or part, or nothing.
  static std::optional<std::string> rawHeader(GMimeObject* object, std::string_view name);
  // The charset that the first text part of the tree declares, or "".
  static std::string firstTextCharset(GMimeObject* object);

 private:
  enum class Role { Body, Alternate };

  void visit(GMimeObject* part, const std::string& id, int depth, Role role,
             bool wholeMessage = false);
  void alternative(GMimeObject* multipart, const std::string& id, int depth, Role role);
  void leaf(GMimePart* part, const std::string& id, Role role, bool wholeMessage);
  void nested(GMimeMessage* message, const std::string& id, int depth);
  void addSegment(std::string text);
  void addAttachment(GMimePart* part, const std::string& id, const std::string& type);
  void addRendering(GMimePart* part, const std::string& id, const std::string& text,
                    const char* suffix);
  std::string filenameOf(GMimePart* part);
  void startPartWork();

  HeaderText& text_;
  AddressText& addresses_;
  PartOptions options_;
  std::string fallback_;
  ParsedMessage* out_ = nullptr;
  const std::function<void()>* onPartWork_ = nullptr;
  bool partWorkStarted_ = false;
};

}  // namespace quillery::tools
