#include "app/ListFont.h"

#include <QFontDatabase>

namespace quillery::app {

namespace {

QFont plainFont(const prefs::FontDescription& description) {
  QFont font(description.family);
  font.setPointSizeF(description.size);
  return font;
}

}  // namespace

QFont ListFont::toFont(const prefs::FontDescription& description) {
  if (!QFontDatabase::families().contains(description.family))
    return plainFont(prefs::StoredPreferences::defaultFont());
  QFont font = plainFont(description);
  const QString& face = description.face;
  if (QFontDatabase::styles(description.family).contains(face)) {
    font.setStyleName(face);
  } else {
    font.setBold(face.contains(QLatin1String("Bold"), Qt::CaseInsensitive));
    font.setItalic(face.contains(QLatin1String("Italic"), Qt::CaseInsensitive) ||
                   face.contains(QLatin1String("Oblique"), Qt::CaseInsensitive));
  }
  return font;
}

prefs::FontDescription ListFont::describe(const QFont& font) {
  return {font.family(), QFontDatabase::styleString(font), font.pointSizeF()};
}

}  // namespace quillery::app
