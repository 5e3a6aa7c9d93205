#include "domail/MailDate.h"

#include <array>
#include <vector>

#include "common/AsciiText.h"

namespace quillery::tools {
namespace {

struct Fields {
  int year = -1;
  int yearDigits = 0;
  int month = -1;
  int day = -1;
  int hour = -1;
  int minute = 0;
  int second = 0;
  std::optional<int> zoneMinutes;
  bool pm = false;
  bool am = false;
};

struct NamedZone {
  const char* name;
  int minutes;
};

constexpr std::array<NamedZone, 44> kZones = {{
    {"ut", 0},     {"utc", 0},    {"gmt", 0},    {"z", 0},      {"wet", 0},     {"bst", 60},
    {"cet", 60},   {"met", 60},   {"mez", 60},   {"west", 60},  {"cest", 120},  {"mest", 120},
    {"mesz", 120}, {"eet", 120},  {"eest", 180}, {"msk", 180},  {"hkt", 480},   {"sgt", 480},
    {"awst", 480}, {"jst", 540},  {"kst", 540},  {"acst", 570}, {"aest", 600},  {"aedt", 660},
    {"nzst", 720}, {"nzdt", 780}, {"est", -300}, {"edt", -240}, {"cst", -360},  {"cdt", -300},
    {"mst", -420}, {"mdt", -360}, {"pst", -480}, {"pdt", -420}, {"akst", -540}, {"akdt", -480},
    {"hst", -600}, {"ast", -240}, {"adt", -180}, {"nst", -210}, {"ndt", -150},  {"ist", 330},
    {"pht", 480},  {"wib", 420},
}};

constexpr std::array<const char*, 12> kMonths = {"january",   "february", "march",    "april",
                                                 "may",       "june",     "july",     "august",
                                                 "september", "october",  "november", "december"};
constexpr std::array<const char*, 7> kDays = {"monday", "tuesday",  "wednesday", "thursday",
                                              "friday", "saturday", "sunday"};

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isAlpha(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// A word names a month or day when it is that name or its first three or more letters.
int nameIndex(const std::string& word, const char* const* names, std::size_t count) {
  if (word.size() < 3) {
    return -1;
  }
  for (std::size_t i = 0; i < count; ++i) {
    const std::string_view name = names[i];
    if (word.size() <= name.size() && name.substr(0, word.size()) == word) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

std::string withoutComments(std::string_view text) {
  std::string out;
  int depth = 0;
  for (char c : text) {
    if (c == '(') {
      ++depth;
    } else if (c == ')' && depth > 0) {
      --depth;
    } else if (depth == 0) {
      out += (c == ',' || c == '\t' || c == '\r' || c == '\n') ? ' ' : c;
    }
  }
  return out;
}

// "+0200", "-07:00", "+02"; false when the text is not a zone.
bool readZone(std::string_view s, Fields& f) {
  if (s.size() < 2 || (s[0] != '+' && s[0] != '-')) {
    return false;
  }
  const int sign = s[0] == '-' ? -1 : 1;
  std::string digits;
  for (char c : s.substr(1)) {
    if (c != ':') {
      digits += c;
    }
  }
  if (!ascii::allDigits(digits) || (digits.size() != 4 && digits.size() != 2)) {
    return false;
  }
  const int hours = ascii::number(std::string_view(digits).substr(0, 2));
  const int minutes = digits.size() == 4 ? ascii::number(std::string_view(digits).substr(2)) : 0;
  if (hours > 14 || minutes > 59) {
    return false;
  }
  f.zoneMinutes = sign * (hours * 60 + minutes);
  return true;
}

// "22:23:35", "22:23", "22:23:35.882", optionally followed by a zone ("22:23:35+0200").
bool readTime(std::string_view s, Fields& f) {
  std::size_t zoneAt = s.find_first_of("+-");
  std::string_view clock = s.substr(0, zoneAt);
  if (!clock.empty() && (clock.back() == 'Z' || clock.back() == 'z')) {
    clock.remove_suffix(1);
    f.zoneMinutes = 0;
  }
  const std::size_t dot = clock.find('.');
  if (dot != std::string_view::npos) {
    if (!ascii::allDigits(clock.substr(dot + 1))) {
      return false;
    }
    clock = clock.substr(0, dot);
  }
  const std::vector<std::string_view> parts = ascii::split(clock, ':');
  if (parts.size() < 2 || parts.size() > 3) {
    return false;
  }
  for (std::string_view p : parts) {
    if (!ascii::allDigits(p) || p.size() > 2) {
      return false;
    }
  }
  f.hour = ascii::number(parts[0]);
  f.minute = ascii::number(parts[1]);
  f.second = parts.size() == 3 ? ascii::number(parts[2]) : 0;
  if (zoneAt != std::string_view::npos && !readZone(s.substr(zoneAt), f)) {
    return false;
  }
  return true;
}

void readNumber(std::string_view token, Fields& f) {
  const int value = ascii::number(token);
  if (token.size() == 4 && f.year >= 0 && f.hour >= 0 && !f.zoneMinutes) {
    // A zone that lost its sign: "22:23:35 0000".
    Fields zone;
    if (readZone(std::string("+") + std::string(token), zone)) {
      f.zoneMinutes = zone.zoneMinutes;
      return;
    }
  }
  if (token.size() >= 3 && f.year < 0) {
    f.year = value;
    f.yearDigits = static_cast<int>(token.size());
  } else if (token.size() <= 2 && f.day < 0 && value >= 1) {
    f.day = value;
  } else if (token.size() <= 2 && f.year < 0) {
    f.year = value;
    f.yearDigits = static_cast<int>(token.size());
  }
}

bool readWord(const std::string& word, Fields& f) {
  const int month = nameIndex(word, kMonths.data(), kMonths.size());
  if (month >= 0 && f.month < 0) {
    f.month = month + 1;
    return true;
  }
  if (nameIndex(word, kDays.data(), kDays.size()) >= 0) {
    return true;
  }
  if (word == "am" || word == "pm") {
    (word == "am" ? f.am : f.pm) = true;
    return true;
  }
  for (const NamedZone& zone : kZones) {
    if (word == zone.name) {
      if (!f.zoneMinutes) {
        f.zoneMinutes = zone.minutes;
      }
      return true;
    }
  }
  // Military zone letters mean an unknown zone.
  return word.size() == 1;
}

// "2012-07-17", "2012-07-17T22:23:35Z", "17-Jul-2012".
bool readDashed(std::string_view token, Fields& f) {
  std::string_view datePart = token;
  std::string_view timePart;
  const std::size_t t = token.find_first_of("Tt");
  if (t != std::string_view::npos && t > 0 && isDigit(token[t - 1])) {
    datePart = token.substr(0, t);
    timePart = token.substr(t + 1);
  }
  const std::vector<std::string_view> parts = ascii::split(datePart, '-');
  if (parts.size() != 3) {
    return false;
  }
  if (ascii::allDigits(parts[0]) && parts[0].size() == 4 && ascii::allDigits(parts[1]) &&
      ascii::allDigits(parts[2])) {
    f.year = ascii::number(parts[0]);
    f.yearDigits = 4;
    f.month = ascii::number(parts[1]);
    f.day = ascii::number(parts[2]);
  } else if (ascii::allDigits(parts[0]) && ascii::allDigits(parts[2])) {
    const int month = nameIndex(ascii::lowered(parts[1]), kMonths.data(), kMonths.size());
    if (month < 0) {
      return false;
    }
    f.day = ascii::number(parts[0]);
    f.month = month + 1;
    f.year = ascii::number(parts[2]);
    f.yearDigits = static_cast<int>(parts[2].size());
  } else {
    return false;
  }
  return timePart.empty() || readTime(timePart, f);
}

bool readToken(std::string_view token, Fields& f) {
  if (token.empty()) {
    return true;
  }
  if ((token[0] == '+' || token[0] == '-') && token.size() > 1 && isDigit(token[1])) {
    return readZone(token, f);
  }
  const std::size_t dash = token.find('-');
  const std::size_t colon = token.find(':');
  if (dash != std::string_view::npos && (colon == std::string_view::npos || dash < colon)) {
    return readDashed(token, f);
  }
  if (isDigit(token[0]) && colon != std::string_view::npos) {
    return readTime(token, f);
  }
  if (ascii::allDigits(token)) {
    readNumber(token, f);
    return true;
  }
  std::string word;
  for (char c : token) {
    if (isAlpha(c)) {
      word += c;
    } else if (c != '.') {
      return false;
    }
  }
  return readWord(ascii::lowered(word), f);
}

bool leapYear(int y) {
  return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}

int daysInMonth(int y, int m) {
  constexpr std::array<int, 12> kLengths = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  return m == 2 && leapYear(y) ? 29 : kLengths[static_cast<std::size_t>(m - 1)];
}

}  // namespace

std::int64_t MailDate::daysFromCivil(int year, int month, int day) {
  // Howard Hinnant's algorithm.
  const std::int64_t y = year - (month <= 2 ? 1 : 0);
  const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
  const std::int64_t yoe = y - era * 400;
  const std::int64_t mp = (month + 9) % 12;
  const std::int64_t doy = (153 * mp + 2) / 5 + day - 1;
  const std::int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
  return era * 146097 + doe - 719468;
}

std::optional<std::time_t> MailDate::parse(std::string_view text) {
  if (text.size() > 200) {
    text = text.substr(0, 200);
  }
  const std::string cleaned = withoutComments(text);
  Fields f;
  std::size_t start = 0;
  for (std::size_t i = 0; i <= cleaned.size(); ++i) {
    if (i == cleaned.size() || cleaned[i] == ' ') {
      if (!readToken(std::string_view(cleaned).substr(start, i - start), f)) {
        return std::nullopt;
      }
      start = i + 1;
    }
  }
  if (f.year < 0 || f.month < 1 || f.month > 12 || f.day < 1) {
    return std::nullopt;
  }
  if (f.yearDigits == 2) {
    f.year += f.year < 50 ? 2000 : 1900;
  } else if (f.yearDigits == 3) {
    f.year += 1900;
  }
  if (f.year < 1900 || f.year > 9999 || f.day > daysInMonth(f.year, f.month)) {
    return std::nullopt;
  }
  if (f.hour < 0) {
    f.hour = 0;
  }
  if (f.pm && f.hour < 12) {
    f.hour += 12;
  } else if (f.am && f.hour == 12) {
    f.hour = 0;
  }
  if (f.hour > 23 || f.minute > 59 || f.second > 60) {
    return std::nullopt;
  }
  const std::int64_t seconds = daysFromCivil(f.year, f.month, f.day) * 86400 + f.hour * 3600 +
                               f.minute * 60 + (f.second == 60 ? 59 : f.second) -
                               std::int64_t{f.zoneMinutes.value_or(0)} * 60;
  return static_cast<std::time_t>(seconds);
}

std::string MailDate::localText(std::time_t when) {
  std::tm local{};
  if (!localtime_r(&when, &local)) {
    return "1970-01-01 00:00:00";
  }
  char text[64];
  const std::size_t n = std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &local);
  return std::string(text, n);
}

}  // namespace quillery::tools
