#include "domail/Base64Text.h"

#include <array>

namespace quillery::tools {
namespace {

constexpr std::array<signed char, 256> makeTable() {
  std::array<signed char, 256> table{};
  for (auto& v : table) {
    v = -1;
  }
  constexpr std::string_view kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
    table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<signed char>(i);
  }
  return table;
}

constexpr std::array<signed char, 256> kValues = makeTable();

}  // namespace

std::string Base64Text::decode(std::string_view text) {
  std::string out;
  out.reserve(text.size() / 4 * 3 + 3);
  unsigned bits = 0;
  int count = 0;  // characters in the current group
  for (char c : text) {
    if (c == '=') {
      count = 0;  // the group ends; its whole bytes are out already
      bits = 0;
      continue;
    }
    const int v = kValues[static_cast<unsigned char>(c)];
    if (v < 0) {
      continue;
    }
    bits = (bits << 6) | static_cast<unsigned>(v);
    ++count;
    if (count >= 2) {
      // Every character after the first completes one more byte: 2 -> 1, 3 -> 2, 4 -> 3.
      const int shift = 6 * count - 8 * (count - 1);
      out += static_cast<char>((bits >> shift) & 0xFF);
    }
    if (count == 4) {
      count = 0;
      bits = 0;
    }
  }
  return out;
}

bool Base64Text::clean(std::string_view text, std::string& out) {
  // One pass that copies as it checks: attachments are the bulk of a mail store's bytes.
  out.resize(text.size() + 1);
  char* write = out.data();
  const char* lineStart = write;
  std::size_t characters = 0;
  std::size_t padding = 0;
  for (const char c : text) {
    if (kValues[static_cast<unsigned char>(c)] >= 0) {
      if (padding > 0) {
        return false;
      }
      *write++ = c;
      ++characters;
    } else if (c == '=') {
      *write++ = c;
      ++padding;
    } else if (c == '\n') {
      if (write != lineStart) {
        *write++ = '\n';
        lineStart = write;
      }
    } else if (c != '\r' && c != ' ' && c != '\t') {
      return false;
    }
  }
  if (write != lineStart) {
    *write++ = '\n';
  }
  out.resize(static_cast<std::size_t>(write - out.data()));
  return characters > 0 && characters % 4 != 1 && padding <= 2;
}

}  // namespace quillery::tools
