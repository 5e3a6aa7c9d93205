#pragma once

#include <QByteArray>
#include <QStringView>
#include <optional>

namespace quillery::exporting {

// The archive's date text ("%Y-%m-%d %H:%M:%S") rewritten for an mbox file, with the C
// locale's English day and month names and no time zone: the text is rewritten, not
// converted, so the time stays the one the archive holds.
class MboxDate {
 public:
  // Parses the stored text the way strptime reads "%Y-%m-%d %H:%M:%S"; whatever follows the
  // seconds (the "*" the list puts after a tagged message's date) is ignored. Nothing when
  // the text does not parse.
  static std::optional<MboxDate> parse(QStringView stored);

  // "%a %b %d %H:%M:%S %Y", the form of a "From " separator line: "Mon Jan 08 14:03:09 2007".
  QByteArray separatorForm() const;
  // "%a, %d %b %Y %H:%M:%S ", the form of a Date header, its trailing blank included.
  QByteArray headerForm() const;

  // The separator form of a stored text, "" when it does not parse.
  static QByteArray separatorForm(QStringView stored);

 private:
  MboxDate() = default;
  const char* dayName() const;
  const char* monthName() const;

  int year_ = 0;
  int month_ = 1;  // 1 to 12
  int day_ = 1;
  int hour_ = 0;
  int minute_ = 0;
  int second_ = 0;
};

}  // namespace quillery::exporting
