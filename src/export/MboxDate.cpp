#include "export/MboxDate.h"

#include <cstdio>
#include <ctime>

namespace quillery::exporting {
namespace {

constexpr const char* kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

// Day of the week (0 is Sunday) of a proleptic Gregorian date, by days since 1970-01-01.
int weekday(long long year, unsigned month, unsigned day) {
  year -= month <= 2;
  const long long era = (year >= 0 ? year : year - 399) / 400;
  const unsigned yearOfEra = unsigned(year - era * 400);
  const unsigned dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  const long long days = era * 146097 + (long long)dayOfEra - 719468;
  const long long w = (days + 4) % 7;  // 1970-01-01 was a Thursday
  return int(w < 0 ? w + 7 : w);
}

}  // namespace

std::optional<MboxDate> MboxDate::parse(QStringView stored) {
  const QByteArray text = stored.toUtf8();
  std::tm parts{};
  if (strptime(text.constData(), "%Y-%m-%d %H:%M:%S", &parts) == nullptr)
    return std::nullopt;
  MboxDate date;
  date.year_ = parts.tm_year + 1900;
  date.month_ = parts.tm_mon + 1;
  date.day_ = parts.tm_mday;
  date.hour_ = parts.tm_hour;
  date.minute_ = parts.tm_min;
  date.second_ = parts.tm_sec;
  return date;
}

const char* MboxDate::dayName() const {
  return kDays[weekday(year_, unsigned(month_), unsigned(day_))];
}

const char* MboxDate::monthName() const {
  return kMonths[month_ - 1];
}

QByteArray MboxDate::separatorForm() const {
  char out[64];
  const int n = std::snprintf(out, sizeof out, "%s %s %02d %02d:%02d:%02d %d", dayName(),
                              monthName(), day_, hour_, minute_, second_, year_);
  return QByteArray(out, n);
}

QByteArray MboxDate::headerForm() const {
  char out[64];
  const int n = std::snprintf(out, sizeof out, "%s, %02d %s %d %02d:%02d:%02d ", dayName(), day_,
                              monthName(), year_, hour_, minute_, second_);
  return QByteArray(out, n);
}

QByteArray MboxDate::separatorForm(QStringView stored) {
  const std::optional<MboxDate> date = parse(stored);
  return date ? date->separatorForm() : QByteArray();
}

}  // namespace quillery::exporting
