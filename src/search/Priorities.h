#pragma once

#include <QString>
#include <QStringList>
#include <algorithm>

namespace quillery::search {

// The priority titles in the order of the tag panel's pop-up.
inline const QStringList& priorityTitles() {
  static const QStringList titles{QStringLiteral("None"), QStringLiteral("Highest"),
                                  QStringLiteral("High"), QStringLiteral("Medium"),
                                  QStringLiteral("Low"),  QStringLiteral("Lowest")};
  return titles;
}

// The two priority scales run in opposite directions, and both must stay so: tagging stores
// "Highest" as 1 up to "Lowest" as 5, while the search looks for "Highest" as 5 down to
// "Lowest" as 1. So a search for "Highest" finds messages tagged "Lowest"; "Medium" and "None"
// find themselves. Any other title is 0 on both scales.

// The number tagging stores in priority_fld for a title: its position in priorityTitles().
inline int tagPriorityNumber(const QString& title) {
  return int(std::max<qsizetype>(priorityTitles().indexOf(title), 0));
}

// The number a priority search compares priority_fld with.
inline int searchPriorityNumber(const QString& title) {
  const int position = tagPriorityNumber(title);
  return position == 0 ? 0 : 6 - position;
}

}  // namespace quillery::search
