#include "domail/MimeParameters.h"

#include <algorithm>
#include <cstdlib>

#include "common/AsciiText.h"

namespace quillery::tools {

MimeParameters::MimeParameters(std::string_view rawValue) {
  const std::string line = HeaderText::unfold(rawValue);
  const std::string_view s = line;
  std::size_t i = s.find(';');
  token_ = ascii::lowered(ascii::trimmedBlanks(s.substr(0, i)));
  while (i != std::string_view::npos && i < s.size()) {
    ++i;  // past ';'
    const std::size_t eq = s.find('=', i);
    if (eq == std::string_view::npos) {
      break;
    }
    const std::size_t semicolon = s.find(';', i);
    if (semicolon != std::string_view::npos && semicolon < eq) {
      i = semicolon;  // "a; ; b=c" or a bare word
      continue;
    }
    std::string key = ascii::lowered(ascii::trimmedBlanks(s.substr(i, eq - i)));
    std::size_t v = eq + 1;
    while (v < s.size() && (s[v] == ' ' || s[v] == '\t')) {
      ++v;
    }
    Parameter p;
    if (v < s.size() && s[v] == '"') {
      ++v;
      while (v < s.size() && s[v] != '"') {
        if (s[v] == '\\' && v + 1 < s.size()) {
          ++v;
        }
        p.value += s[v++];
      }
      i = s.find(';', v);
    } else {
      i = s.find(';', v);
      p.value = std::string(
          ascii::trimmedBlanks(s.substr(v, i == std::string_view::npos ? s.size() - v : i - v)));
    }
    if (!key.empty() && key.back() == '*') {
      p.extended = true;
      key.pop_back();
    }
    const std::size_t star = key.rfind('*');
    if (star != std::string::npos && star + 1 < key.size() &&
        std::all_of(key.begin() + static_cast<long>(star) + 1, key.end(),
                    [](char c) { return c >= '0' && c <= '9'; }) &&
        key.size() - star <= 5) {
      p.section = std::atoi(key.c_str() + star + 1);
      key.resize(star);
    }
    p.name = std::move(key);
    parameters_.push_back(std::move(p));
  }
}

std::optional<std::string> MimeParameters::raw(std::string_view name) const {
  const std::string key = ascii::lowered(name);
  for (const Parameter& p : parameters_) {
    if (p.name == key && p.section < 0 && !p.extended) {
      return p.value;
    }
  }
  return std::nullopt;
}

std::optional<std::string> MimeParameters::decoded(std::string_view name, HeaderText& text,
                                                   std::string_view fallbackCharset) const {
  const std::string key = ascii::lowered(name);
  std::vector<const Parameter*> sections;
  const Parameter* single = nullptr;
  const Parameter* plain = nullptr;
  for (const Parameter& p : parameters_) {
    if (p.name != key) {
      continue;
    }
    if (p.section >= 0) {
      sections.push_back(&p);
    } else if (p.extended && !single) {
      single = &p;
    } else if (!p.extended && !plain) {
      plain = &p;
    }
  }
  std::vector<const Parameter*> parts;
  if (!sections.empty()) {
    std::stable_sort(sections.begin(), sections.end(), [](const Parameter* a, const Parameter* b) {
      return a->section < b->section;
    });
    parts = sections;
  } else if (single) {
    parts.push_back(single);
  } else if (plain) {
    return text.decode(plain->value, fallbackCharset);
  } else {
    return std::nullopt;
  }
  // Only the first extended section names the charset: charset'language'value.
  std::string charset;
  std::string bytes;
  bool first = true;
  for (const Parameter* p : parts) {
    std::string_view value = p->value;
    if (p->extended && first) {
      const std::size_t q1 = value.find('\'');
      const std::size_t q2 = q1 == std::string_view::npos ? q1 : value.find('\'', q1 + 1);
      if (q2 != std::string_view::npos) {
        charset = std::string(value.substr(0, q1));
        value.remove_prefix(q2 + 1);
      }
    }
    bytes += p->extended ? ascii::hexEscapesDecoded(value, '%') : std::string(value);
    first = false;
  }
  if (charset.empty() && bytes.find("=?") != std::string::npos) {
    return text.decode(bytes, fallbackCharset);
  }
  return HeaderText::singleLine(
      text.decoder().toUtf8(bytes, charset.empty() ? fallbackCharset : charset));
}

}  // namespace quillery::tools
