#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace quillery::tools {

// Rebuilds the whole message from a .partial.emlx, whose large parts Apple Mail stored apart:
// such a part keeps its headers plus "X-Apple-Content-Length" and an empty body. Parts are
// named as IMAP numbers them ("2", "2.4": multipart children count from 1, the body of a
// single-part message or of an attached message is ".1"). Each stripped part whose data is
// found gets the data back in its own Content-Transfer-Encoding (base64, quoted-printable,
// or as it is for 7bit, 8bit and binary) and loses the X-Apple-Content-Length field; every
// other byte of the message is kept as it stands. A part whose data is missing stays as the
// partial file has it, so the message is still delivered.
class PartialEmlxAssembler {
 public:
  // The stored data of a part (decoded bytes), and whether it is already transfer-encoded
  // text as the part declares it; nothing when the store does not have it.
  struct StoredPart {
    std::string bytes;
    bool alreadyEncoded = false;
  };
  using PartLookup = std::function<std::optional<StoredPart>(const std::string& partId)>;

  explicit PartialEmlxAssembler(PartLookup lookup) : lookup_(std::move(lookup)) {}

  // The stored parts of message `id` of an Apple Mail "Messages" folder: the file in
  // Attachments/<id>/<part>/ beside that folder (decoded data), else
  // Messages/<id>.<part>.emlxpart (taken as already encoded when its text can stand in the
  // part's encoding, else encoded like decoded data).
  static PartLookup folderLookup(const std::string& messagesDir, const std::string& id);

  // The rebuilt message.
  std::string assemble(std::string_view message);

  // How many stripped parts had no stored data in the last assemble().
  int missingParts() const { return missing_; }
  int restoredParts() const { return restored_; }

 private:
  void message(std::string_view entity, const std::string& prefix, std::string& out, int depth);
  void part(std::string_view entity, const std::string& id, std::string& out, int depth);
  void multipart(std::string_view body, const std::string& boundary, const std::string& id,
                 std::string& out, int depth);
  void leaf(std::string_view headers, std::string_view body, const std::string& id,
            std::string& out);

  PartLookup lookup_;
  int missing_ = 0;
  int restored_ = 0;
};

}  // namespace quillery::tools
