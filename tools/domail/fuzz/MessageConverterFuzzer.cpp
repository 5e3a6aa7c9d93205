// libFuzzer target: one file of mail as every store the tool reads would hold it (an mbox
// file or a message saved on its own, a Maildir message, a Thunderbird mailbox beside its
// index, an .emlx file), read by the tool's own walk over the chosen folders, and every
// message that the readers give through the whole conversion into its record, with every
// switch on, as the tool does it for each message.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "common/MailWalker.h"
#include "domail/MessageConverter.h"
#include "domail/RecordFormat.h"

namespace {

using namespace quillery::tools;

// The folders are made once; every input rewrites the same files in them.
struct Stores {
  std::string root;
  std::vector<std::string> files;
  std::vector<std::string> chosen;

  Stores() {
    char pattern[] = "/tmp/domail-fuzz-XXXXXX";
    root = ::mkdtemp(pattern);
    const std::string profile = root + "/profile";
    for (const char* folder : {"/Maildir/cur", "/Maildir/new", "/Maildir/tmp",
                               "/profile/Mail/Local Folders", "/saved"}) {
      std::filesystem::create_directories(root + folder);
    }
    std::ofstream(profile + "/prefs.js") << "// profile\n";
    std::ofstream(profile + "/Mail/Local Folders/Inbox.msf") << "// index\n";
    files = {root + "/Maildir/cur/1700000000.M1P1.host:2,S", profile + "/Mail/Local Folders/Inbox",
             root + "/saved/message.eml", root + "/saved/1.emlx"};
    chosen = {root + "/Maildir", profile, root + "/saved"};
  }
  ~Stores() {
    std::error_code ignored;
    std::filesystem::remove_all(root, ignored);
  }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static Stores stores;
  static MessageConverter converter({true, true}, 1'600'000'000);
  for (const std::string& file : stores.files) {
    std::ofstream(file, std::ios::binary | std::ios::trunc)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  }
  ParsedMessage message;
  std::string record;
  std::string scratch;
  const MessageSink convert = [&](RawMessage&& raw) {
    if (converter.convert(raw, message, [] {})) {
      RecordFormat::message(message, record);
      RecordFormat::rawSource(raw.source, scratch);
      RecordFormat::announcement(raw.path, message.subject);
    }
    return true;
  };
  walkMboxFiles(stores.chosen, convert, [](const std::string&) {}, {});
  return 0;
}
