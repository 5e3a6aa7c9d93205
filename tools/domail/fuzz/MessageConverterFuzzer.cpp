// libFuzzer target: a message source through the whole conversion into its record, with
// every switch on, as the tool does it for each message.
#include <cstddef>
#include <cstdint>
#include <string>

#include "domail/MessageConverter.h"
#include "domail/RecordFormat.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static quillery::tools::MessageConverter converter({true, true}, 1'600'000'000);
  quillery::tools::RawMessage raw;
  raw.source.assign(reinterpret_cast<const char*>(data), size);
  raw.mailbox = "Fuzz/INBOX";
  raw.path = "/fuzz/1.emlx";
  quillery::tools::ParsedMessage message;
  if (converter.convert(raw, message, [] {})) {
    std::string record;
    quillery::tools::RecordFormat::message(message, record);
    std::string scratch;
    quillery::tools::RecordFormat::rawSource(raw.source, scratch);
    quillery::tools::RecordFormat::announcement(raw.path, message.subject);
  }
  return 0;
}
