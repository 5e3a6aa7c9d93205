#pragma once

#include <QComboBox>

namespace quillery::app {

// A month, day or year pop-up of a date range: "All" followed by the numbers as the archive
// writes them in dates, months and days with two digits ("01"), years with four (1990 up to
// the current year).
class DatePopUp : public QComboBox {
  Q_OBJECT

 public:
  enum class Kind { Month, Day, Year };

  explicit DatePopUp(Kind kind, QWidget* parent = nullptr);

  // Selects the entry with this title. A number the pop-up lacks (a year before 1990, or a
  // date from the future) is first added where it belongs in numeric order, so that a date
  // read from the archive can always be shown.
  void selectTitle(const QString& title);
  QString title() const { return currentText(); }
};

}  // namespace quillery::app
