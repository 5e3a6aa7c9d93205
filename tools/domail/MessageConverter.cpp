#include "domail/MessageConverter.h"

#include <gmime/gmime.h>

#include "common/MimeHeaders.h"
#include "domail/GmailLabels.h"
#include "domail/MailDate.h"
#include "domail/MessageDate.h"

namespace quillery::tools {
namespace {

// A stretch of an mbox file between two postmarks may hold text that opens with no header
// block; it is kept as a message without headers, its text the body, rather than lost.
bool withoutHeaders(std::string_view source) {
  return !MimeHeaders::startsWithField(source) && !source.starts_with("\n") &&
         !source.starts_with("\r\n");
}

std::string_view headerBlock(const std::string& source) {
  if (withoutHeaders(source)) {
    return {};
  }
  return std::string_view(source).substr(0, MimeHeaders::headerEnd(source));
}

GMimeParserOptions* makeParserOptions() {
  g_mime_init();
  GMimeParserOptions* options = g_mime_parser_options_new();
  g_mime_parser_options_set_rfc2047_compliance_mode(options, GMIME_RFC_COMPLIANCE_LOOSE);
  g_mime_parser_options_set_address_compliance_mode(options, GMIME_RFC_COMPLIANCE_LOOSE);
  g_mime_parser_options_set_parameter_compliance_mode(options, GMIME_RFC_COMPLIANCE_LOOSE);
  g_mime_parser_options_set_allow_addresses_without_domain(options, TRUE);
  static const char* kFallback[] = {"utf-8", "windows-1252", nullptr};
  g_mime_parser_options_set_fallback_charsets(options, kFallback);
  return options;
}

}  // namespace

MessageConverter::MessageConverter(PartOptions options, std::time_t now)
    : options_(options),
      now_(now),
      parserOptions_(makeParserOptions()),
      headerText_(decoder_),
      addresses_(headerText_, parserOptions_),
      collector_(headerText_, addresses_, options) {}

MessageConverter::~MessageConverter() {
  g_mime_parser_options_free(parserOptions_);
}

std::string MessageConverter::dateText(const RawMessage& raw) const {
  return MailDate::localText(MessageDate::of(raw, headerBlock(raw.source), now_));
}

bool MessageConverter::convert(const RawMessage& raw, ParsedMessage& out,
                               const std::function<void()>& onPartWork) {
  std::string_view source = raw.source;
  if (withoutHeaders(source)) {
    headerless_.assign(1, '\n').append(source);  // an empty header block before the text
    source = headerless_;
  }
  GMimeStream* stream = g_mime_stream_mem_new_with_buffer(source.data(), source.size());
  GMimeParser* parser = g_mime_parser_new_with_stream(stream);
  g_mime_parser_set_format(parser, GMIME_FORMAT_MESSAGE);
  GMimeMessage* message = g_mime_parser_construct_message(parser, parserOptions_);
  g_object_unref(parser);
  g_object_unref(stream);
  if (!message) {
    return false;
  }
  GMimeObject* object = GMIME_OBJECT(message);
  const std::string charset =
      BodyCollector::firstTextCharset(g_mime_message_get_mime_part(message));
  auto header = [&](const char* name) { return BodyCollector::rawHeader(object, name); };

  std::string mailbox;
  CharsetDecoder::appendLenientUtf8(raw.mailbox, mailbox);
  if (raw.labelsNameMailbox) {
    if (const std::optional<std::string> labels = header("X-Gmail-Labels")) {
      mailbox = GmailLabels::mailbox(headerText_.decode(*labels, charset)).value_or(mailbox);
    }
  }
  out.mailbox = HeaderText::singleLine(mailbox);
  std::optional<std::string> from = header("From");
  if (!from) {
    from = header("Sender");
  }
  out.from = from ? addresses_.display(*from, charset) : std::string();
  const std::optional<std::string> to = header("To");
  out.to = to ? addresses_.display(*to, charset) : std::string();
  const std::optional<std::string> subject = header("Subject");
  out.subject = subject ? headerText_.decode(*subject, charset) : std::string();
  out.date = dateText(raw);
  out.mailto.clear();
  if (const std::optional<std::string> replyTo = header("Reply-To")) {
    out.mailto = addresses_.firstAddress(*replyTo, charset);
  }
  if (out.mailto.empty() && from) {
    out.mailto = addresses_.firstAddress(*from, charset);
  }
  collector_.collect(message, charset, out, onPartWork);
  g_object_unref(message);
  return true;
}

}  // namespace quillery::tools
