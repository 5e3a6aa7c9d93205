#include "SourceFixtures.h"

#include <fcntl.h>
#include <gmime/gmime.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace quillery::test {

std::string numberedMessage(int i, const std::string& body) {
  return "From: Sender " + std::to_string(i) + " <s" + std::to_string(i) +
         "@example.com>\nTo: you@example.com\nSubject: Message " + std::to_string(i) +
         "\nDate: Mon, 1 Jan 2018 10:00:00 +0000\n\n" + body;
}

std::vector<std::string> numberedMessages(const std::vector<int>& numbers) {
  std::vector<std::string> out;
  for (const int i : numbers) {
    out.push_back(numberedMessage(i));
  }
  return out;
}

std::string emlx(const std::string& message, long count, bool oldTrailer, std::time_t dateSent,
                 std::time_t received) {
  std::string countText = std::to_string(count < 0 ? static_cast<long>(message.size()) : count);
  countText.resize(std::max<std::size_t>(countText.size(), 10), ' ');
  const std::string doctype =
      oldTrailer ? "-//Apple Computer//DTD PLIST 1.0//EN" : "-//Apple//DTD PLIST 1.0//EN";
  const std::string dates = dateSent < 0 ? ""
                                         : "\t<key>date-received</key>\n\t<integer>" +
                                               std::to_string(received) +
                                               "</integer>\n\t<key>date-sent</key>\n\t<real>" +
                                               std::to_string(dateSent) + ".0</real>\n";
  return countText + "\n" + message +
         "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"" + doctype +
         "\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n"
         "<dict>\n" +
         dates + "\t<key>flags</key>\n\t<integer>8590195713</integer>\n</dict>\n</plist>\n";
}

void writeFile(const std::string& path, const std::string& bytes, std::time_t modified) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  ASSERT_TRUE(std::ofstream(path, std::ios::binary) << bytes) << "cannot write " << path;
  const timespec times[2] = {{modified, 0}, {modified, 0}};
  if (modified != 0) {
    ::utimensat(AT_FDCWD, path.c_str(), times, 0);
  }
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> decodedParts(const std::string& source) {
  g_mime_init();
  GMimeStream* stream = g_mime_stream_mem_new_with_buffer(source.data(), source.size());
  GMimeParser* parser = g_mime_parser_new_with_stream(stream);
  GMimeMessage* message = g_mime_parser_construct_message(parser, nullptr);
  std::vector<std::string> parts;
  if (message) {
    auto collect = [](GMimeObject*, GMimeObject* part, gpointer data) {
      if (!GMIME_IS_PART(part)) {
        return;
      }
      GMimeStream* out = g_mime_stream_mem_new();
      if (GMimeDataWrapper* content = g_mime_part_get_content(GMIME_PART(part))) {
        g_mime_data_wrapper_write_to_stream(content, out);
      }
      const GByteArray* bytes = g_mime_stream_mem_get_byte_array(GMIME_STREAM_MEM(out));
      static_cast<std::vector<std::string>*>(data)->emplace_back(
          reinterpret_cast<const char*>(bytes->data), bytes->len);
      g_object_unref(out);
    };
    g_mime_message_foreach(message, collect, &parts);
    g_object_unref(message);
  }
  g_object_unref(parser);
  g_object_unref(stream);
  return parts;
}

tools::MessageSink Collected::sink() {
  return [this](tools::RawMessage&& m) {
    messages.push_back(std::move(m));
    return true;
  };
}

tools::InvalidSink Collected::invalidSink() {
  return [this](const std::string& path) { invalid.push_back(path); };
}

std::vector<std::string> Collected::mailboxes() const {
  std::vector<std::string> out;
  for (const tools::RawMessage& m : messages) {
    out.push_back(m.mailbox);
  }
  return out;
}

std::vector<std::string> Collected::sources() const {
  std::vector<std::string> out;
  for (const tools::RawMessage& m : messages) {
    out.push_back(m.source);
  }
  return out;
}

}  // namespace quillery::test
