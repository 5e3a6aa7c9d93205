#include "domail/PartContent.h"

#include <gmime/gmime.h>

#include "domail/Base64Text.h"
#include "domail/HtmlText.h"

namespace quillery::tools {
namespace {

std::string copyOf(GMimeStream* stream) {
  GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(stream));
  return std::string(reinterpret_cast<const char*>(bytes->data), bytes->len);
}

}  // namespace

std::string PartContent::decoded(GMimePart* part) {
  GMimeDataWrapper* content = g_mime_part_get_content(part);
  if (!content) {
    return {};
  }
  if (g_mime_data_wrapper_get_encoding(content) == GMIME_CONTENT_ENCODING_BASE64) {
    return Base64Text::decode(encoded(part));
  }
  GMimeStream* stream = g_mime_stream_mem_new();
  g_mime_data_wrapper_write_to_stream(content, stream);
  std::string out = copyOf(stream);
  g_object_unref(stream);
  return out;
}

std::string PartContent::encoded(GMimePart* part) {
  GMimeDataWrapper* content = g_mime_part_get_content(part);
  GMimeStream* source = content ? g_mime_data_wrapper_get_stream(content) : nullptr;
  if (!source || g_mime_data_wrapper_get_encoding(content) != GMIME_CONTENT_ENCODING_BASE64) {
    return {};
  }
  GMimeStream* stream = g_mime_stream_mem_new();
  g_mime_stream_reset(source);
  g_mime_stream_write_to_stream(source, stream);
  g_mime_stream_reset(source);
  std::string out = copyOf(stream);
  g_object_unref(stream);
  return out;
}

std::string PartContent::text(GMimePart* part, CharsetDecoder& decoder) {
  return text(part, decoded(part), decoder);
}

std::string PartContent::text(GMimePart* part, std::string_view bytes, CharsetDecoder& decoder) {
  const char* declared = g_mime_object_get_content_type_parameter(GMIME_OBJECT(part), "charset");
  std::string charset = declared ? declared : "";
  GMimeContentType* type = g_mime_object_get_content_type(GMIME_OBJECT(part));
  if (charset.empty() && type && g_mime_content_type_is_type(type, "text", "html")) {
    charset = HtmlText::declaredCharset(bytes);
  }
  return cleanText(decoder.toUtf8(bytes, charset));
}

std::string PartContent::cleanText(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  const char* p = text.data();
  const char* const end = p + text.size();
  while (p < end) {
    const char* run = p;
    while (run < end &&
           (static_cast<unsigned char>(*run) >= 0x20 || *run == '\n' || *run == '\t')) {
      ++run;
    }
    out.append(p, static_cast<std::size_t>(run - p));
    if (run == end) {
      break;
    }
    if (*run == '\r' && !(run + 1 < end && run[1] == '\n')) {
      out += '\n';
    }
    p = run + 1;
  }
  return out;
}

}  // namespace quillery::tools
