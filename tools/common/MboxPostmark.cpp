#include "common/MboxPostmark.h"

#include <array>
#include <cstdlib>

#include "common/AsciiText.h"
#include "common/MimeHeaders.h"

namespace quillery::tools {
namespace {

constexpr std::array<std::string_view, 7> kWeekdays = {"mon", "tue", "wed", "thu",
                                                       "fri", "sat", "sun"};
constexpr std::array<std::string_view, 12> kMonths = {"jan", "feb", "mar", "apr", "may", "jun",
                                                      "jul", "aug", "sep", "oct", "nov", "dec"};

std::string_view stripLineEnd(std::string_view line) {
  while (!line.empty() && (line.back() == '\r' || line.back() == '\n')) {
    line.remove_suffix(1);
  }
  return line;
}

int monthIndex(std::string_view token) {
  if (token.size() < 3) {
    return -1;
  }
  for (std::size_t m = 0; m < kMonths.size(); ++m) {
    if (MimeHeaders::equalsIgnoringCase(token.substr(0, 3), kMonths[m])) {
      return static_cast<int>(m);
    }
  }
  return -1;
}

bool isWeekday(std::string_view token) {
  if (token.size() < 3 || token.size() > 9) {
    return false;
  }
  for (std::string_view w : kWeekdays) {
    if (MimeHeaders::equalsIgnoringCase(token.substr(0, 3), w)) {
      return true;
    }
  }
  return false;
}

// Zone names such as "GMT", "PST" or "MET".
bool isZoneName(std::string_view token) {
  if (token.empty() || token.size() > 5) {
    return false;
  }
  for (char c : token) {
    if (c < 'A' || c > 'Z') {
      return false;
    }
  }
  return true;
}

// A zone comment such as "(PST)" or "(UTC)".
bool isComment(std::string_view token) {
  return token.size() >= 3 && token.front() == '(' && token.back() == ')' &&
         isZoneName(token.substr(1, token.size() - 2));
}

// "hh:mm" or "hh:mm:ss".
bool parseTime(std::string_view t, int& h, int& m, int& s) {
  if (t.size() != 5 && t.size() != 8) {
    return false;
  }
  if (t[2] != ':' || (t.size() == 8 && t[5] != ':')) {
    return false;
  }
  if (!ascii::allDigits(t.substr(0, 2)) || !ascii::allDigits(t.substr(3, 2)) ||
      (t.size() == 8 && !ascii::allDigits(t.substr(6, 2)))) {
    return false;
  }
  h = ascii::number(t.substr(0, 2));
  m = ascii::number(t.substr(3, 2));
  s = t.size() == 8 ? ascii::number(t.substr(6, 2)) : 0;
  return h < 24 && m < 60 && s < 61;
}

}  // namespace

bool MboxPostmark::startsLikePostmark(std::string_view line) {
  return line.size() >= 5 && line[0] == 'F' && line.substr(0, 5) == "From ";
}

std::optional<std::time_t> MboxPostmark::date(std::string_view line) {
  line = stripLineEnd(line);
  if (!startsLikePostmark(line)) {
    return std::nullopt;
  }
  int month = -1, day = 0, year = 0, hour = 0, minute = 0, second = 0;
  bool haveTime = false;
  long zoneSeconds = 0;
  std::size_t pos = 5;
  bool first = true;
  while (pos < line.size()) {
    while (pos < line.size() && (line[pos] == ' ' || line[pos] == '\t')) {
      ++pos;
    }
    std::size_t end = pos;
    while (end < line.size() && line[end] != ' ' && line[end] != '\t') {
      ++end;
    }
    const std::string_view token = line.substr(pos, end - pos);
    pos = end;
    if (token.empty()) {
      break;
    }
    if (first) {  // the sender
      first = false;
      continue;
    }
    if (token == "remote" && month >= 0) {
      break;  // UUCP's "remote from <host>" after the date
    }
    if (month < 0 && monthIndex(token) >= 0 && token.size() <= 9) {
      month = monthIndex(token);
    } else if (!haveTime && parseTime(token, hour, minute, second)) {
      haveTime = true;
    } else if (ascii::allDigits(token) && token.size() <= 2 && day == 0) {
      day = ascii::number(token);
    } else if (ascii::allDigits(token) && token.size() == 4) {
      year = ascii::number(token);
    } else if (token.size() == 5 && (token[0] == '+' || token[0] == '-') &&
               ascii::allDigits(token.substr(1))) {
      const long hhmm = ascii::number(token.substr(1));
      zoneSeconds = (hhmm / 100 * 3600 + hhmm % 100 * 60) * (token[0] == '-' ? -1 : 1);
    } else if (!isWeekday(token) && !isZoneName(token) && !isComment(token)) {
      // Body text that merely starts with "From " has words a postmark date never has.
      return std::nullopt;
    }
  }
  if (month < 0 || day < 1 || day > 31 || year < 1900 || !haveTime) {
    return std::nullopt;
  }
  std::tm tm{};
  tm.tm_year = year - 1900;
  tm.tm_mon = month;
  tm.tm_mday = day;
  tm.tm_hour = hour;
  tm.tm_min = minute;
  tm.tm_sec = second;
  return ::timegm(&tm) - zoneSeconds;
}

bool MboxPostmark::hasBareSender(std::string_view line) {
  line = stripLineEnd(line);
  if (!startsLikePostmark(line)) {
    return false;
  }
  std::string_view rest = line.substr(5);
  while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\t')) {
    rest.remove_prefix(1);
  }
  while (!rest.empty() && (rest.back() == ' ' || rest.back() == '\t')) {
    rest.remove_suffix(1);
  }
  return !rest.empty() && rest.find_first_of(" \t") == std::string_view::npos;
}

bool MboxPostmark::isSeparator(std::string_view line, std::string_view nextLine,
                               bool afterBlankLine) {
  if (!startsLikePostmark(line)) {
    return false;
  }
  const bool headerNext = MimeHeaders::isFieldLine(stripLineEnd(nextLine));
  if (afterBlankLine) {
    return (hasBareSender(line) && headerNext) || date(line).has_value();
  }
  return headerNext && (hasBareSender(line) || date(line).has_value());
}

}  // namespace quillery::tools
