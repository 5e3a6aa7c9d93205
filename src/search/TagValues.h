#pragma once

#include <QString>

namespace quillery::search {

// What the tag panel shows and saves: the category, keywords and notes texts and the title of
// the priority pop-up ("None", "Highest", ... "Lowest").
struct TagValues {
  QString category;
  QString keywords;
  QString notes;
  QString priority = QStringLiteral("None");

  bool operator==(const TagValues&) const = default;
};

}  // namespace quillery::search
