#include "domail/HeaderText.h"

#include <algorithm>
#include <optional>

#include "common/AsciiText.h"
#include "domail/Base64Text.h"

namespace quillery::tools {
namespace {

struct EncodedWord {
  std::string charset;
  std::string bytes;
  std::size_t end = 0;  // offset after "?="
};

// In a Q-encoded word "_" is a blank; an encoded "=5F" stays an underscore.
std::string decodeQ(std::string_view text) {
  std::string blanks(text);
  std::replace(blanks.begin(), blanks.end(), '_', ' ');
  return ascii::hexEscapesDecoded(blanks, '=');
}

// "=?charset?B|Q?text?=" starting at `at`.
std::optional<EncodedWord> encodedWordAt(std::string_view s, std::size_t at) {
  if (s.substr(at, 2) != "=?") {
    return std::nullopt;
  }
  const std::size_t q1 = s.find('?', at + 2);
  if (q1 == std::string_view::npos || q1 == at + 2 || q1 + 2 >= s.size() || s[q1 + 2] != '?') {
    return std::nullopt;
  }
  const char kind = s[q1 + 1];
  if (kind != 'B' && kind != 'b' && kind != 'Q' && kind != 'q') {
    return std::nullopt;
  }
  const std::size_t textStart = q1 + 3;
  const std::size_t close = s.find("?=", textStart);
  if (close == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view text = s.substr(textStart, close - textStart);
  if (text.find_first_of(" \t") != std::string_view::npos) {
    return std::nullopt;
  }
  EncodedWord word;
  word.charset = std::string(s.substr(at + 2, q1 - at - 2));
  word.bytes = (kind == 'B' || kind == 'b') ? Base64Text::decode(text) : decodeQ(text);
  word.end = close + 2;
  return word;
}

bool onlyBlanks(std::string_view s) {
  return s.find_first_not_of(" \t") == std::string_view::npos;
}

void appendQuotedContent(std::string_view text, std::string& out) {
  for (char c : text) {
    if (c == '"' || c == '\\') {
      out += '\\';
    }
    out += c;
  }
}

}  // namespace

std::string HeaderText::unfold(std::string_view raw) {
  std::string out;
  out.reserve(raw.size());
  for (char c : raw) {
    if (c != '\r' && c != '\n') {
      out += c;
    }
  }
  return out;
}

std::string HeaderText::singleLine(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '\t' || c == '\r' || c == '\n') {
      out += ' ';
    } else if (u >= 0x20 && u != 0x7F) {
      out += c;
    }
  }
  const std::size_t first = out.find_first_not_of(' ');
  if (first == std::string::npos) {
    return {};
  }
  const std::size_t last = out.find_last_not_of(' ');
  return out.substr(first, last - first + 1);
}

std::string HeaderText::decodeWords(std::string_view raw, std::string_view fallbackCharset,
                                    bool forAddresses) {
  const std::string line = unfold(raw);
  const std::string_view s = line;
  std::string out;
  std::size_t plainStart = 0;
  std::size_t i = 0;
  bool inQuotes = false;
  auto flushPlain = [&](std::size_t end) {
    if (end > plainStart) {
      decoder_.appendUtf8(s.substr(plainStart, end - plainStart), fallbackCharset, out);
    }
  };
  while (i < s.size()) {
    if (s[i] == '"') {
      inQuotes = !inQuotes;
    } else if (s[i] == '\\' && inQuotes) {
      ++i;
    } else if (s[i] == '=' && i + 1 < s.size() && s[i + 1] == '?') {
      std::optional<EncodedWord> word = encodedWordAt(s, i);
      if (word) {
        flushPlain(i);
        // Gather the run of encoded words separated only by blanks.
        std::string decoded;
        std::string charset = word->charset;
        std::string bytes = std::move(word->bytes);
        std::size_t end = word->end;
        for (;;) {
          std::size_t next = end;
          while (next < s.size() && (s[next] == ' ' || s[next] == '\t')) {
            ++next;
          }
          std::optional<EncodedWord> following =
              next < s.size() ? encodedWordAt(s, next) : std::nullopt;
          if (!following || !onlyBlanks(s.substr(end, next - end))) {
            break;
          }
          if (following->charset != charset) {
            decoder_.appendUtf8(bytes, charset, decoded);
            bytes.clear();
            charset = following->charset;
          }
          bytes += following->bytes;
          end = following->end;
        }
        decoder_.appendUtf8(bytes, charset, decoded);
        if (forAddresses && inQuotes) {
          appendQuotedContent(decoded, out);
        } else if (forAddresses) {
          out += '"';
          appendQuotedContent(decoded, out);
          out += '"';
        } else {
          out += decoded;
        }
        i = end;
        plainStart = end;
        continue;
      }
    }
    ++i;
  }
  flushPlain(s.size());
  return singleLine(out);
}

std::string HeaderText::decode(std::string_view raw, std::string_view fallbackCharset) {
  return decodeWords(raw, fallbackCharset, false);
}

std::string HeaderText::decodeForAddresses(std::string_view raw, std::string_view fallbackCharset) {
  return decodeWords(raw, fallbackCharset, true);
}

}  // namespace quillery::tools
