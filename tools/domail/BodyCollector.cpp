#include "domail/BodyCollector.h"

#include <gmime/gmime.h>

#include <cstring>

#include "common/AsciiText.h"
#include "common/MimeHeaders.h"
#include "domail/Base64Text.h"
#include "domail/EnrichedText.h"
#include "domail/FlowedText.h"
#include "domail/HtmlText.h"
#include "domail/MimeParameters.h"
#include "domail/PartContent.h"

namespace quillery::tools {
namespace {

constexpr int kMaxDepth = 32;

struct Extension {
  const char* type;
  const char* suffix;
};

constexpr Extension kExtensions[] = {
    {"image/jpeg", ".jpg"},
    {"image/jpg", ".jpg"},
    {"image/pjpeg", ".jpg"},
    {"image/png", ".png"},
    {"image/gif", ".gif"},
    {"image/bmp", ".bmp"},
    {"image/tiff", ".tif"},
    {"image/svg+xml", ".svg"},
    {"image/webp", ".webp"},
    {"image/heic", ".heic"},
    {"application/pdf", ".pdf"},
    {"application/zip", ".zip"},
    {"application/msword", ".doc"},
    {"application/rtf", ".rtf"},
    {"application/pgp-signature", ".asc"},
    {"application/pkcs7-signature", ".p7s"},
    {"application/x-pkcs7-signature", ".p7s"},
    {"application/pkcs7-mime", ".p7m"},
    {"text/plain", ".txt"},
    {"text/html", ".html"},
    {"text/calendar", ".ics"},
    {"text/x-vcard", ".vcf"},
    {"text/vcard", ".vcf"},
    {"text/directory", ".vcf"},
    {"text/csv", ".csv"},
    {"text/rfc822-headers", ".txt"},
    {"message/rfc822", ".eml"},
    {"message/delivery-status", ".txt"},
    {"message/disposition-notification", ".txt"},
    {"audio/mpeg", ".mp3"},
    {"video/mp4", ".mp4"},
};

std::string mimeType(GMimeObject* object) {
  GMimeContentType* type = g_mime_object_get_content_type(object);
  if (!type) {
    return "text/plain";
  }
  char* text = g_mime_content_type_get_mime_type(type);
  std::string out = text ? ascii::lowered(text) : std::string("text/plain");
  g_free(text);
  return out;
}

// An explicit disposition decides; without one, a named part is an attachment.
bool isAttachment(GMimeObject* object) {
  const char* disposition = g_mime_object_get_disposition(object);
  if (disposition && ascii::lowered(disposition) == "attachment") {
    return true;
  }
  if (disposition && ascii::lowered(disposition) == "inline") {
    return false;
  }
  return g_mime_object_get_content_disposition_parameter(object, "filename") ||
         g_mime_object_get_content_type_parameter(object, "name");
}

bool isRendering(const std::string& type) {
  return type == "text/html" || type == "text/enriched" || type == "text/richtext";
}

// Whether a tree holds an inline part of the kind `wanted` accepts (nested messages aside).
template <typename Wanted>
bool holds(GMimeObject* object, Wanted wanted, int depth) {
  if (depth > kMaxDepth) {
    return false;
  }
  if (GMIME_IS_MULTIPART(object)) {
    GMimeMultipart* multipart = GMIME_MULTIPART(object);
    const int count = g_mime_multipart_get_count(multipart);
    for (int i = 0; i < count; ++i) {
      if (holds(g_mime_multipart_get_part(multipart, i), wanted, depth + 1)) {
        return true;
      }
    }
    return false;
  }
  return GMIME_IS_PART(object) && !isAttachment(object) && wanted(mimeType(object));
}

std::string childId(const std::string& parent, int index) {
  const std::string n = std::to_string(index + 1);
  return parent.empty() ? n : parent + "." + n;
}

std::string baseName(std::string name) {
  const std::size_t slash = name.find_last_of("/\\");
  if (slash != std::string::npos) {
    name.erase(0, slash + 1);
  }
  return name;
}

}  // namespace

std::optional<std::string> BodyCollector::rawHeader(GMimeObject* object, std::string_view name) {
  GMimeHeaderList* headers = g_mime_object_get_header_list(object);
  if (!headers) {
    return std::nullopt;
  }
  const int count = g_mime_header_list_get_count(headers);
  for (int i = 0; i < count; ++i) {
    GMimeHeader* header = g_mime_header_list_get_header_at(headers, i);
    const char* headerName = g_mime_header_get_name(header);
    if (headerName && MimeHeaders::equalsIgnoringCase(headerName, name)) {
      const char* raw = g_mime_header_get_raw_value(header);
      return std::string(raw ? raw : "");
    }
  }
  return std::nullopt;
}

std::string BodyCollector::firstTextCharset(GMimeObject* object) {
  for (int depth = 0; object && depth <= kMaxDepth; ++depth) {
    if (GMIME_IS_MULTIPART(object)) {
      GMimeMultipart* multipart = GMIME_MULTIPART(object);
      GMimeObject* found = nullptr;
      for (int i = 0; i < g_mime_multipart_get_count(multipart) && !found; ++i) {
        GMimeObject* child = g_mime_multipart_get_part(multipart, i);
        if (GMIME_IS_MULTIPART(child) || mimeType(child).starts_with("text/")) {
          found = child;
        }
      }
      object = found;
    } else if (GMIME_IS_PART(object) && mimeType(object).starts_with("text/")) {
      const char* charset = g_mime_object_get_content_type_parameter(object, "charset");
      return charset ? charset : "";
    } else {
      break;
    }
  }
  return {};
}

void BodyCollector::collect(GMimeMessage* message, std::string_view fallbackCharset,
                            ParsedMessage& out, const std::function<void()>& onPartWork) {
  fallback_ = std::string(fallbackCharset);
  out_ = &out;
  onPartWork_ = &onPartWork;
  partWorkStarted_ = false;
  out.body.clear();
  out.attachments.clear();
  if (GMimeObject* top = g_mime_message_get_mime_part(message)) {
    visit(top, GMIME_IS_MULTIPART(top) ? "" : "1", 0, Role::Body, true);
  }
  out_ = nullptr;
  onPartWork_ = nullptr;
}

void BodyCollector::startPartWork() {
  if (!partWorkStarted_ && onPartWork_ && *onPartWork_) {
    partWorkStarted_ = true;
    (*onPartWork_)();
  }
}

void BodyCollector::visit(GMimeObject* part, const std::string& id, int depth, Role role,
                          bool wholeMessage) {
  if (depth > kMaxDepth) {
    return;
  }
  if (GMIME_IS_MESSAGE_PART(part)) {
    if (GMimeMessage* inner = g_mime_message_part_get_message(GMIME_MESSAGE_PART(part))) {
      nested(inner, id, depth + 1);
    }
    return;
  }
  if (GMIME_IS_MULTIPART(part)) {
    if (mimeType(part) == "multipart/alternative") {
      alternative(part, id, depth, role);
      return;
    }
    GMimeMultipart* multipart = GMIME_MULTIPART(part);
    const int count = g_mime_multipart_get_count(multipart);
    for (int i = 0; i < count; ++i) {
      visit(g_mime_multipart_get_part(multipart, i), childId(id, i), depth + 1, role);
    }
    return;
  }
  if (GMIME_IS_PART(part)) {
    leaf(GMIME_PART(part), id.empty() ? "1" : id, role, wholeMessage);
  }
}

void BodyCollector::alternative(GMimeObject* object, const std::string& id, int depth, Role role) {
  GMimeMultipart* multipart = GMIME_MULTIPART(object);
  const int count = g_mime_multipart_get_count(multipart);
  int chosen = -1;
  for (int i = 0; i < count && chosen < 0; ++i) {
    if (holds(
            g_mime_multipart_get_part(multipart, i),
            [](const std::string& type) { return type == "text/plain"; }, depth + 1)) {
      chosen = i;
    }
  }
  for (int i = count - 1; i >= 0 && chosen < 0; --i) {
    if (holds(g_mime_multipart_get_part(multipart, i), isRendering, depth + 1)) {
      chosen = i;
    }
  }
  for (int i = 0; i < count; ++i) {
    const Role childRole = (chosen < 0 || i == chosen) ? role : Role::Alternate;
    visit(g_mime_multipart_get_part(multipart, i), childId(id, i), depth + 1, childRole);
  }
}

void BodyCollector::leaf(GMimePart* part, const std::string& id, Role role, bool wholeMessage) {
  GMimeObject* object = GMIME_OBJECT(part);
  const std::string type = mimeType(object);
  // The single part of a message is its body even when it claims to be an attachment.
  const bool attachment = !wholeMessage && isAttachment(object);
  if (!attachment && type == "text/plain") {
    if (role == Role::Body) {
      std::string text = PartContent::text(part, text_.decoder());
      const char* format = g_mime_object_get_content_type_parameter(object, "format");
      if (format && ascii::lowered(format) == "flowed") {
        const char* delsp = g_mime_object_get_content_type_parameter(object, "delsp");
        text = FlowedText::unflow(text, delsp && ascii::lowered(delsp) == "yes");
      }
      addSegment(std::move(text));
    }
    return;
  }
  if (!attachment && isRendering(type)) {
    if (role == Role::Body || options_.htmlParts) {
      const std::string text = PartContent::text(part, text_.decoder());
      if (role == Role::Body) {
        addSegment(type == "text/html" ? HtmlText::toText(text)
                                       : EnrichedText::toText(text, type == "text/richtext"));
      }
      if (options_.htmlParts) {
        addRendering(part, id, text, type == "text/html" ? ".html" : ".etf");
      }
    }
    return;
  }
  if (options_.attachments) {
    addAttachment(part, id, type);
  }
}

void BodyCollector::nested(GMimeMessage* message, const std::string& id, int depth) {
  GMimeObject* object = GMIME_OBJECT(message);
  std::string block = "-------- Attached message --------";
  const std::string charset = firstTextCharset(g_mime_message_get_mime_part(message));
  for (const char* name : {"From", "To", "Date", "Subject"}) {
    if (std::optional<std::string> raw = rawHeader(object, name)) {
      const bool address = std::strcmp(name, "From") == 0 || std::strcmp(name, "To") == 0;
      block += std::string("\n") + name + ": " +
               (address ? addresses_.display(*raw, charset) : text_.decode(*raw, charset));
    }
  }
  addSegment(std::move(block));
  if (GMimeObject* top = g_mime_message_get_mime_part(message)) {
    visit(top, GMIME_IS_MULTIPART(top) ? id : id + ".1", depth, Role::Body,
          !GMIME_IS_MULTIPART(top));
  }
}

void BodyCollector::addSegment(std::string text) {
  while (!text.empty() && (text.back() == '\n' || text.back() == ' ' || text.back() == '\t')) {
    text.pop_back();
  }
  std::size_t lead = 0;
  while (lead < text.size() && text[lead] == '\n') {
    ++lead;
  }
  if (lead == text.size()) {
    return;
  }
  if (!out_->body.empty()) {
    out_->body += "\n\n";
  }
  out_->body.append(text, lead, std::string::npos);
}

std::string BodyCollector::filenameOf(GMimePart* part) {
  GMimeObject* object = GMIME_OBJECT(part);
  std::optional<std::string> name;
  if (std::optional<std::string> raw = rawHeader(object, "Content-Disposition")) {
    name = MimeParameters(*raw).decoded("filename", text_, fallback_);
  }
  if (!name || name->empty()) {
    if (std::optional<std::string> raw = rawHeader(object, "Content-Type")) {
      name = MimeParameters(*raw).decoded("name", text_, fallback_);
    }
  }
  return name ? HeaderText::singleLine(baseName(*name)) : std::string();
}

void BodyCollector::addRendering(GMimePart* part, const std::string& id, const std::string& text,
                                 const char* suffix) {
  startPartWork();
  ParsedAttachment rendering;
  rendering.type = mimeType(GMIME_OBJECT(part));
  rendering.filename = filenameOf(part);
  if (rendering.filename.empty()) {
    rendering.filename = "part-" + id;
  }
  if (!rendering.filename.ends_with(suffix)) {
    rendering.filename += suffix;
  }
  rendering.base64 = false;
  rendering.content = text;
  if (rendering.type == "text/html") {
    HtmlText::declareUtf8(rendering.content);
  }
  out_->attachments.push_back(std::move(rendering));
}

void BodyCollector::addAttachment(GMimePart* part, const std::string& id, const std::string& type) {
  startPartWork();
  ParsedAttachment attachment;
  attachment.type = type;
  attachment.filename = filenameOf(part);
  if (attachment.filename.empty()) {
    if (type == "application/ms-tnef" || type == "application/vnd.ms-tnef") {
      attachment.filename = "winmail.dat";
    } else {
      std::string suffix = ".bin";
      for (const Extension& e : kExtensions) {
        if (type == e.type) {
          suffix = e.suffix;
        }
      }
      attachment.filename = "part-" + id + suffix;
    }
  }
  const bool text = type.starts_with("text/");
  if (!text && g_mime_part_get_content_encoding(part) == GMIME_CONTENT_ENCODING_BASE64 &&
      Base64Text::clean(PartContent::encoded(part), attachment.content)) {
    // Clean base64 goes into the record as it is, without decoding and encoding it again.
    attachment.preEncoded = true;
    out_->attachments.push_back(std::move(attachment));
    return;
  }
  std::string bytes = PartContent::decoded(part);
  if (text && bytes.find('\0') == std::string::npos) {
    attachment.base64 = false;
    attachment.content = PartContent::text(part, bytes, text_.decoder());
  } else {
    attachment.base64 = true;
    attachment.content = std::move(bytes);
  }
  out_->attachments.push_back(std::move(attachment));
}

}  // namespace quillery::tools
