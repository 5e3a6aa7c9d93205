#include "app/DatePopUp.h"

#include <QDate>

namespace quillery::app {

DatePopUp::DatePopUp(Kind kind, QWidget* parent) : QComboBox(parent) {
  addItem(QStringLiteral("All"));
  if (kind == Kind::Year) {
    for (int year = 1990; year <= QDate::currentDate().year(); ++year)
      addItem(QString::number(year));
  } else {
    const int last = kind == Kind::Month ? 12 : 31;
    for (int n = 1; n <= last; ++n)
      addItem(QStringLiteral("%1").arg(n, 2, 10, QLatin1Char('0')));
  }
  setSizeAdjustPolicy(QComboBox::AdjustToContents);
}

void DatePopUp::selectTitle(const QString& title) {
  int index = findText(title, Qt::MatchExactly);
  if (index < 0) {
    const int value = title.toInt();
    index = 1;
    while (index < count() && itemText(index).toInt() < value)
      ++index;
    insertItem(index, title);
  }
  setCurrentIndex(index);
}

}  // namespace quillery::app
