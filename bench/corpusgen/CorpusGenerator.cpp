#include "CorpusGenerator.h"

#include <cmath>

#include "Vocabulary.h"

namespace quillery::bench {
namespace {

constexpr const char* kDomains[] = {"example.com", "example.org", "mail.example.net",
                                    "corp.example"};
constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kHex[] = "0123456789ABCDEF";

struct AttachmentKind {
  const char* type;
  const char* suffix;
};
constexpr AttachmentKind kKinds[] = {{"application/pdf", "pdf"},
                                     {"image/jpeg", "jpg"},
                                     {"application/zip", "zip"},
                                     {"image/png", "png"}};

bool ascii(const std::string& s) {
  for (char c : s) {
    if (static_cast<unsigned char>(c) >= 0x80) {
      return false;
    }
  }
  return true;
}

std::string base64(const std::string& bytes) {
  std::string out;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    const unsigned b0 = static_cast<unsigned char>(bytes[i]);
    const unsigned b1 = i + 1 < bytes.size() ? static_cast<unsigned char>(bytes[i + 1]) : 0;
    const unsigned b2 = i + 2 < bytes.size() ? static_cast<unsigned char>(bytes[i + 2]) : 0;
    const unsigned v = (b0 << 16) | (b1 << 8) | b2;
    out += kBase64[(v >> 18) & 63];
    out += kBase64[(v >> 12) & 63];
    out += i + 1 < bytes.size() ? kBase64[(v >> 6) & 63] : '=';
    out += i + 2 < bytes.size() ? kBase64[v & 63] : '=';
  }
  return out;
}

std::string encodedWord(const std::string& text, bool q) {
  if (!q) {
    return "=?UTF-8?B?" + base64(text) + "?=";
  }
  std::string out = "=?UTF-8?Q?";
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == ' ') {
      out += '_';
    } else if (u >= 0x80 || c == '=' || c == '?' || c == '_') {
      out += '=';
      out += kHex[u >> 4];
      out += kHex[u & 15];
    } else {
      out += c;
    }
  }
  return out + "?=";
}

std::string quotedPrintable(const std::string& text) {
  std::string out;
  std::size_t column = 0;
  for (char c : text) {
    const auto u = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += '\n';
      column = 0;
      continue;
    }
    const bool escape = u >= 0x80 || c == '=';
    if (column + (escape ? 3 : 1) > 75) {
      out += "=\n";
      column = 0;
    }
    if (escape) {
      out += '=';
      out += kHex[u >> 4];
      out += kHex[u & 15];
      column += 3;
    } else {
      out += c;
      ++column;
    }
  }
  return out;
}

std::string dateText(std::time_t when, int zoneMinutes) {
  const std::time_t local = when + zoneMinutes * 60;
  std::tm tm{};
  gmtime_r(&local, &tm);
  char text[64];
  std::snprintf(text, sizeof text, "%s, %d %s %04d %02d:%02d:%02d %c%02d%02d", kDays[tm.tm_wday],
                tm.tm_mday, kMonths[tm.tm_mon], tm.tm_year + 1900, tm.tm_hour, tm.tm_min, tm.tm_sec,
                zoneMinutes < 0 ? '-' : '+', std::abs(zoneMinutes) / 60,
                std::abs(zoneMinutes) % 60);
  return text;
}

}  // namespace

std::uint64_t CorpusGenerator::random() {
  // splitmix64
  std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
  return z ^ (z >> 31);
}

std::size_t CorpusGenerator::logUniform(std::size_t low, std::size_t high) {
  const double unit = static_cast<double>(random() >> 11) / static_cast<double>(1ull << 53);
  return static_cast<std::size_t>(
      std::exp(std::log(static_cast<double>(low)) +
               unit * (std::log(static_cast<double>(high)) - std::log(static_cast<double>(low)))));
}

std::string CorpusGenerator::word() {
  const Vocabulary& words = Vocabulary::words();
  return words.at(words.draw(random()));
}

std::string CorpusGenerator::person(std::string& address) {
  const Vocabulary& words = Vocabulary::words();
  const std::string first = words.firstName(random());
  const std::string last = words.familyName(random());
  address = first + "." + std::to_string(below(100)) + "@" +
            kDomains[below(sizeof kDomains / sizeof kDomains[0])];
  for (char& c : address) {
    if (static_cast<unsigned char>(c) >= 0x80 || c == '\'') {
      c = 'x';
    }
  }
  const std::string name = first + " " + last;
  if (!ascii(name)) {
    return encodedWord(name, below(2) == 0) + " <" + address + ">";
  }
  return below(2) == 0 ? "\"" + name + "\" <" + address + ">" : name + " <" + address + ">";
}

std::string CorpusGenerator::paragraphText(std::size_t bytes) {
  std::string out;
  std::size_t column = 0;
  while (out.size() < bytes) {
    std::string w = word();
    if (column == 0 && below(40) == 0) {
      w = "From";  // a line that an mbox writer has to quote
    }
    if (column + w.size() + 1 > 72) {
      out += '\n';
      column = 0;
      if (below(6) == 0) {
        out += '\n';
      }
    } else if (column > 0) {
      out += ' ';
      ++column;
    }
    out += w;
    column += w.size();
  }
  return out + "\n";
}

std::string CorpusGenerator::subject() {
  std::string s;
  const std::size_t words = 2 + below(7);
  for (std::size_t i = 0; i < words; ++i) {
    if (i > 0) {
      s += ' ';
    }
    s += word();
  }
  s += " #" + std::to_string(count_);
  if (!ascii(s) || below(8) == 0) {
    return encodedWord(s, below(2) == 0);
  }
  if (below(4) == 0) {
    s.insert(0, "Re: ");
  }
  return s;
}

void CorpusGenerator::appendAttachment(std::string& out, const std::string& boundary) {
  const AttachmentKind& kind = kKinds[below(sizeof kKinds / sizeof kKinds[0])];
  const std::size_t size = logUniform(10 * 1024, 200 * 1024);
  std::string bytes(size, '\0');
  for (std::size_t i = 0; i < size; i += 8) {
    const std::uint64_t r = random();
    for (std::size_t k = 0; k < 8 && i + k < size; ++k) {
      bytes[i + k] = static_cast<char>(r >> (8 * k));
    }
  }
  const std::string name = word() + "-" + std::to_string(count_) + "." + kind.suffix;
  out += "--" + boundary + "\nContent-Type: " + kind.type + "; name=\"" + name +
         "\"\nContent-Transfer-Encoding: base64\nContent-Disposition: attachment; filename=\"" +
         name + "\"\n\n";
  const std::string encoded = base64(bytes);
  for (std::size_t i = 0; i < encoded.size(); i += 76) {
    out.append(encoded, i, 76);
    out += '\n';
  }
}

CorpusGenerator::Message CorpusGenerator::next() {
  ++count_;
  Message m;
  // From 2005 on, about 45 minutes apart on average, in the senders' own zones.
  m.date = 1104537600 + count_ * 2700 + static_cast<std::time_t>(below(1800));
  const int zone = static_cast<int>(below(9)) * 60 - 300;
  m.mailbox = below(10) < 7 ? 0 : (below(2) ? 1 : 2);
  std::string fromAddress;
  std::string toAddress;
  const std::string from = person(fromAddress);
  const std::string to = person(toAddress);
  std::string& out = m.source;
  out += "Return-Path: <" + fromAddress + ">\n";
  out += "Received: from mx" + std::to_string(below(9)) + ".example.net (mx.example.net " +
         "[192.0.2." + std::to_string(below(250)) + "])\n\tby mail.example.org with ESMTPS id " +
         std::to_string(random() % 1000000007) + "\n\tfor <" + toAddress + ">; " +
         dateText(m.date + 40, 0) + "\n";
  out += "From: " + from + "\nTo: " + to + "\n";
  if (below(5) == 0) {
    std::string ccAddress;
    out += "Cc: " + person(ccAddress) + "\n";
  }
  out += "Subject: " + subject() + "\nDate: " + dateText(m.date, zone) + "\n";
  out += "Message-ID: <" + std::to_string(random()) + "." + std::to_string(count_) +
         "@generated.example>\nMIME-Version: 1.0\n";

  const std::string text = paragraphText(logUniform(500, 20 * 1024));
  const bool qp = below(3) == 0;
  const std::string textPart =
      std::string("Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: ") +
      (qp ? "quoted-printable\n\n" + quotedPrintable(text) : "8bit\n\n" + text);
  const bool html = below(4) == 0;
  const bool attachment = below(100) < 15;
  std::string body = textPart;
  std::string type;
  if (html) {
    std::string markup = "<html><body>\n<p>";
    for (char c : text) {
      markup += c == '\n' ? std::string("<br>\n") : std::string(1, c);
    }
    markup += "</p>\n</body></html>\n";
    const std::string b = "alt-" + std::to_string(count_);
    body = "--" + b + "\n" + textPart + "\n--" + b +
           "\nContent-Type: text/html; charset=utf-8\nContent-Transfer-Encoding: "
           "quoted-printable\n\n" +
           quotedPrintable(markup) + "\n--" + b + "--\n";
    type = "multipart/alternative; boundary=\"" + b + "\"";
  }
  if (attachment) {
    const std::string b = "mix-" + std::to_string(count_);
    std::string mixed = "--" + b + "\n";
    mixed += html ? "Content-Type: " + type + "\n\n" + body : body;
    mixed += "\n";
    appendAttachment(mixed, b);
    mixed += "--" + b + "--\n";
    body = mixed;
    type = "multipart/mixed; boundary=\"" + b + "\"";
  }
  if (type.empty()) {
    out += body;
  } else {
    out += "Content-Type: " + type + "\n\nThis is a multi-part message in MIME format.\n\n" + body;
  }
  return m;
}

}  // namespace quillery::bench
