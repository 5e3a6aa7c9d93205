#pragma once

#include <cstdio>

namespace quillery::search {

// The Base64 decoding of stored attachments (RFC 2045: A-Z, a-z, 0-9, "+", "/").
class Base64Decoder {
 public:
  // Reads the input stream to its end, character by character, and writes the decoded bytes
  // to the output stream. Characters are collected in groups of four alphabet characters;
  // every other character (line breaks, blanks, the padding "=", any other byte) is skipped.
  // A group cut short by the end of the input yields one byte less than it has characters,
  // so two characters give one byte and three give two; padding never yields bytes. Damaged
  // input decodes to whatever this rule gives: there is no error. Returns the input's
  // end-of-file indication (non-zero).
  static int decodeBase64File(std::FILE* in, std::FILE* out);
};

}  // namespace quillery::search
