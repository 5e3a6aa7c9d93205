#include "app/StoredPreferences.h"

#include <QFontDatabase>

#include "platform/Settings.h"

namespace quillery::app {

namespace {

const QString kFamily = QStringLiteral("family");
const QString kFace = QStringLiteral("face");
const QString kSize = QStringLiteral("size");

void takeIfNonZero(const platform::Settings& settings, const char* key, int& state) {
  const int stored = settings.value(QLatin1String(key)).toInt();
  if (stored != 0)
    state = stored;
}

}  // namespace

QFont StoredPreferences::defaultFont() {
  QFont font(QStringLiteral("Lucida Grande"));
  font.setPointSizeF(10.0);
  return font;
}

QVariantMap StoredPreferences::fontAttributes(const QFont& font) {
  return {{kFamily, font.family()},
          {kFace, QFontDatabase::styleString(font)},
          {kSize, font.pointSizeF()}};
}

QFont StoredPreferences::fontFromAttributes(const QVariant& attributes) {
  const QVariantMap map = attributes.toMap();
  const QString family = map.value(kFamily).toString();
  const QString face = map.value(kFace).toString();
  bool sizeOk = false;
  const double size = map.value(kSize).toDouble(&sizeOk);
  if (family.isEmpty() || !sizeOk || size <= 0.0 || !QFontDatabase::families().contains(family))
    return defaultFont();

  QFont font(family);
  font.setPointSizeF(size);
  if (QFontDatabase::styles(family).contains(face)) {
    font.setStyleName(face);
  } else {
    font.setBold(face.contains(QLatin1String("Bold"), Qt::CaseInsensitive));
    font.setItalic(face.contains(QLatin1String("Italic"), Qt::CaseInsensitive) ||
                   face.contains(QLatin1String("Oblique"), Qt::CaseInsensitive));
  }
  return font;
}

QStringList StoredPreferences::storedCategories(const platform::Settings& settings) {
  return settings.value(QStringLiteral("categories")).toStringList();
}

void StoredPreferences::read(const platform::Settings& settings) {
  takeIfNonZero(settings, "allmbState", allmbState);
  takeIfNonZero(settings, "attachState", attachState);
  takeIfNonZero(settings, "htmlState", htmlState);
  takeIfNonZero(settings, "trashState", trashState);
  takeIfNonZero(settings, "origState", origState);
  mailboxesState = settings.value(QStringLiteral("mailboxesState")).toInt();
  if (settings.contains(QStringLiteral("backupPath")))
    backupPath = settings.value(QStringLiteral("backupPath")).toString();
  accountList = settings.value(QStringLiteral("accounts")).toStringList();
  mailboxList = settings.value(QStringLiteral("mailboxes")).toStringList();
  currentFont = fontFromAttributes(settings.value(QStringLiteral("panelFont")));
}

void StoredPreferences::write(platform::Settings& settings, const QString& dbPath,
                              const QStringList& categoryList) const {
  const QVariantMap values{
      {QStringLiteral("dbPath"), dbPath},
      {QStringLiteral("backupPath"), backupPath},
      {QStringLiteral("accounts"), accountList},
      {QStringLiteral("mailboxes"), mailboxList},
      {QStringLiteral("categories"), categoryList},
      {QStringLiteral("panelFont"), fontAttributes(currentFont)},
      {QStringLiteral("allmbState"), allmbState},
      {QStringLiteral("attachState"), attachState},
      {QStringLiteral("htmlState"), htmlState},
      {QStringLiteral("trashState"), trashState},
      {QStringLiteral("origState"), origState},
      {QStringLiteral("mailboxesState"), mailboxesState},
  };
  for (auto it = values.cbegin(); it != values.cend(); ++it)
    settings.setValue(it.key(), it.value());
  settings.registerDefaults(values);
  settings.sync();
}

}  // namespace quillery::app
