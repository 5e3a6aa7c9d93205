#include "search/Base64Decoder.h"

#include <array>

namespace quillery::search {
namespace {

// The 6-bit value of an alphabet character, -1 for any other byte.
constexpr std::array<signed char, 256> kValues = [] {
  std::array<signed char, 256> values{};
  values.fill(-1);
  const char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (int i = 0; i < 64; ++i)
    values[static_cast<unsigned char>(alphabet[i])] = static_cast<signed char>(i);
  return values;
}();

}  // namespace

int Base64Decoder::decodeBase64File(std::FILE* in, std::FILE* out) {
  // A read error ends the input as its end would; the result then says it was no end.
  while (!std::feof(in) && !std::ferror(in)) {
    int group[4] = {0, 0, 0, 0};
    int count = 0;
    while (count < 4 && !std::feof(in)) {
      const int c = std::getc(in);
      if (c == EOF)
        break;
      const int value = kValues[static_cast<unsigned char>(c)];
      if (value >= 0)
        group[count++] = value;
    }
    if (count == 0)
      continue;
    const unsigned char bytes[3] = {
        static_cast<unsigned char>((group[0] << 2) | (group[1] >> 4)),
        static_cast<unsigned char>(((group[1] & 0x0F) << 4) | (group[2] >> 2)),
        static_cast<unsigned char>(((group[2] & 0x03) << 6) | group[3])};
    std::fwrite(bytes, 1, static_cast<std::size_t>(count - 1), out);
  }
  return std::feof(in);
}

}  // namespace quillery::search
