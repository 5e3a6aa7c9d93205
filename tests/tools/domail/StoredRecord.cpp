#include "StoredRecord.h"

#include <string_view>

namespace quillery::tools::test {
namespace {

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> out;
  std::size_t pos = 0;
  for (;;) {
    const std::size_t nl = text.find('\n', pos);
    out.push_back(text.substr(pos, nl == std::string::npos ? std::string::npos : nl - pos) + "\n");
    if (nl == std::string::npos) {
      return out;
    }
    pos = nl + 1;
  }
}

std::string trimmed(const std::string& s) {
  const std::size_t first = s.find_first_not_of(" \t\r\n");
  if (first == std::string::npos) {
    return {};
  }
  return s.substr(first, s.find_last_not_of(" \t\r\n") - first + 1);
}

std::string withoutNewlines(std::string s) {
  std::erase(s, '\n');
  return s;
}

}  // namespace

std::string StoredRecord::Attachment::bytes() const {
  if (encoding.find("base64") == std::string::npos) {
    return blob;
  }
  static const std::string kAlphabet =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  unsigned bits = 0;
  int count = 0;
  for (char c : blob) {
    const std::size_t v = kAlphabet.find(c);
    if (v == std::string::npos) {
      continue;
    }
    bits = (bits << 6) | static_cast<unsigned>(v);
    if ((count += 6) >= 8) {
      count -= 8;
      out += static_cast<char>((bits >> count) & 0xFF);
    }
  }
  return out;
}

StoredRecord StoredRecord::read(const std::string& text) {
  StoredRecord r;
  const std::vector<std::string> all = lines(text);
  std::size_t i = 0;
  auto at = [&](std::size_t k) {
    return k < all.size() ? std::string_view(all[k]) : std::string_view();
  };
  while (i < all.size()) {
    const std::string_view line = at(i);
    if (line.starts_with("ENDOFEMAIL:")) {
      r.ended = true;
      return r;
    }
    const std::string value = std::string(line.substr(line.find(':') + 1));
    if (line.starts_with("MAILBOX: ")) {
      r.mailbox = withoutNewlines(std::string(line.substr(9)));
    } else if (line.starts_with("FROM:")) {
      r.from = trimmed(value);
    } else if (line.starts_with("TO:")) {
      r.to = trimmed(value);
    } else if (line.starts_with("SUBJECT:")) {
      r.subject = trimmed(value);
    } else if (line.starts_with("DATE:")) {
      r.date = trimmed(value);
    } else if (line.starts_with("MAILTO:")) {
      r.mailto = trimmed(value);
    } else if (line.starts_with("BODY:")) {
      std::string body(line.substr(5));
      while (++i < all.size() && !at(i).ends_with("ENDOFBODY:\n")) {
        body += at(i);
      }
      r.body = trimmed(body);
      if (!at(++i).starts_with("ATTACH:")) {
        if (at(i).starts_with("ENDOFEMAIL:")) {
          r.ended = true;
          return r;
        }
        ++i;
        continue;
      }
      Attachment current;
      while (++i < all.size()) {
        const std::string_view a = at(i);
        if (a.starts_with("TYPE:")) {
          current.type = withoutNewlines(std::string(a.substr(5)));
        } else if (a.starts_with("FILENAME:")) {
          current.filename = withoutNewlines(std::string(a.substr(9)));
        } else if (a.starts_with("ENCODING:")) {
          current.encoding = withoutNewlines(std::string(a.substr(9)));
        } else if (a.starts_with("ATTACH:")) {
          current = Attachment{};
        } else if (a.starts_with("BLOB:")) {
          current.blob.clear();
          while (++i < all.size() && !at(i).ends_with("ENDATTACH:\n")) {
            current.blob += at(i);
          }
          r.attachments.push_back(current);
          if (at(++i).starts_with("ENDATTACHMENTS:")) {
            break;
          }
        } else if (a.starts_with("ENDATTACHMENTS:")) {
          break;
        }
      }
    }
    ++i;
  }
  return r;
}

std::string StoredRecord::readRaw(const std::string& text) {
  std::string source;
  for (const std::string& line : lines(text)) {
    if (line.starts_with("ENDOFRAW:")) {
      break;
    }
    if (!line.starts_with("RAW:")) {
      source += line;
    }
  }
  return source;
}

bool StoredRecord::validUtf8(const std::string& s) {
  std::size_t i = 0;
  while (i < s.size()) {
    const auto c = static_cast<unsigned char>(s[i]);
    const std::size_t n = c < 0x80 ? 1 : c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : c >= 0xC2 ? 2 : 0;
    if (n == 0 || i + n > s.size()) {
      return false;
    }
    for (std::size_t k = 1; k < n; ++k) {
      if ((static_cast<unsigned char>(s[i + k]) & 0xC0) != 0x80) {
        return false;
      }
    }
    i += n;
  }
  return true;
}

}  // namespace quillery::tools::test
