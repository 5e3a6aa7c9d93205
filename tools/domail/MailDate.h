#pragma once

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <string_view>

namespace quillery::tools {

// Dates as mail writes them. parse() reads RFC 5322 dates and the forms found in real mail:
// obsolete two- and three-digit years, named zones (EST, CEST, JST, ...), a missing day name
// or seconds, fractional seconds, a four-digit zone without its sign, asctime order
// ("Sun Jan  2 11:02:19 2022"), ISO 8601 ("2022-01-02T11:02:19Z") and "2-Jan-2022". A text
// without a recognisable English month, with an impossible day or time (31 April, 25:00), or
// with a year outside 1900..9999 gives nothing, so the caller falls back to another date.
// A date without a zone is taken as UTC.
class MailDate {
 public:
  static std::optional<std::time_t> parse(std::string_view text);

  // "%Y-%m-%d %H:%M:%S" in the local time of the process (its TZ), the archive's date form.
  static std::string localText(std::time_t when);

  // Days since 1970-01-01 of a proleptic Gregorian date.
  static std::int64_t daysFromCivil(int year, int month, int day);
};

}  // namespace quillery::tools
