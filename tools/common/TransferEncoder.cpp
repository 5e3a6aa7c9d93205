#include "common/TransferEncoder.h"

#include <algorithm>

namespace quillery::tools {
namespace {

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kHex[] = "0123456789ABCDEF";
constexpr std::size_t kBase64LineBytes = 57;  // 76 encoded characters
constexpr std::size_t kQpLineLimit = 76;

}  // namespace

void TransferEncoder::base64(std::string_view data, std::string_view eol, std::string& out) {
  out.reserve(out.size() + data.size() / 3 * 4 + data.size() / kBase64LineBytes * 2 + 8);
  for (std::size_t line = 0; line < data.size(); line += kBase64LineBytes) {
    const std::size_t end = std::min(data.size(), line + kBase64LineBytes);
    std::size_t i = line;
    for (; i + 3 <= end; i += 3) {
      const unsigned v = (static_cast<unsigned char>(data[i]) << 16) |
                         (static_cast<unsigned char>(data[i + 1]) << 8) |
                         static_cast<unsigned char>(data[i + 2]);
      out += kBase64[(v >> 18) & 63];
      out += kBase64[(v >> 12) & 63];
      out += kBase64[(v >> 6) & 63];
      out += kBase64[v & 63];
    }
    if (end - i == 1) {
      const unsigned v = static_cast<unsigned char>(data[i]) << 16;
      out += kBase64[(v >> 18) & 63];
      out += kBase64[(v >> 12) & 63];
      out += "==";
    } else if (end - i == 2) {
      const unsigned v = (static_cast<unsigned char>(data[i]) << 16) |
                         (static_cast<unsigned char>(data[i + 1]) << 8);
      out += kBase64[(v >> 18) & 63];
      out += kBase64[(v >> 12) & 63];
      out += kBase64[(v >> 6) & 63];
      out += '=';
    }
    out += eol;
  }
}

void TransferEncoder::quotedPrintable(std::string_view data, std::string_view eol,
                                      std::string& out) {
  std::size_t column = 0;
  auto emit = [&](std::string_view piece) {
    if (column + piece.size() > kQpLineLimit - 1) {
      out += '=';
      out += eol;
      column = 0;
    }
    out += piece;
    column += piece.size();
  };
  for (std::size_t i = 0; i < data.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(data[i]);
    const bool lineBreakNext = i + 1 == data.size() || data[i + 1] == '\n' ||
                               (data[i + 1] == '\r' && i + 2 < data.size() && data[i + 2] == '\n');
    if (c == '\n' || (c == '\r' && i + 1 < data.size() && data[i + 1] == '\n')) {
      if (c == '\r') {
        ++i;
      }
      out += eol;
      column = 0;
    } else if (c == '=' || c < ' ' || c >= 127 || ((c == ' ' || c == '\t') && lineBreakNext)) {
      const char escaped[3] = {'=', kHex[c >> 4], kHex[c & 15]};
      emit(std::string_view(escaped, 3));
    } else {
      const char plain = static_cast<char>(c);
      emit(std::string_view(&plain, 1));
    }
  }
}

}  // namespace quillery::tools
