#include "prefs/StoredPreferences.h"

#include "platform/Settings.h"

namespace quillery::prefs {

namespace {

const QString kFamily = QStringLiteral("family");
const QString kFace = QStringLiteral("face");
const QString kSize = QStringLiteral("size");
const QString kDbPath = QStringLiteral("dbPath");

void takeIfNonZero(const platform::Settings& settings, const char* key, int& state) {
  const int stored = settings.value(QLatin1String(key)).toInt();
  if (stored != 0)
    state = stored;
}

QVariantMap fontAttributes(const FontDescription& font) {
  return {{kFamily, font.family}, {kFace, font.face}, {kSize, font.size}};
}

FontDescription fontFromAttributes(const QVariant& attributes) {
  const QVariantMap map = attributes.toMap();
  bool sizeOk = false;
  const FontDescription font{map.value(kFamily).toString(), map.value(kFace).toString(),
                             map.value(kSize).toDouble(&sizeOk)};
  if (font.family.isEmpty() || !sizeOk || font.size <= 0.0)
    return StoredPreferences::defaultFont();
  return font;
}

}  // namespace

FontDescription StoredPreferences::defaultFont() {
  return {QStringLiteral("Lucida Grande"), QString(), 10.0};
}

QString StoredPreferences::defaultDbPath(const QString& homeDir) {
  return homeDir + QStringLiteral("/Desktop/myemaildb");
}

QString StoredPreferences::archivePath(const platform::Settings& settings, const QString& homeDir) {
  const QString saved = settings.value(kDbPath).toString();
  return saved.isEmpty() ? defaultDbPath(homeDir) : saved;
}

QStringList StoredPreferences::storedCategories(const platform::Settings& settings) {
  return settings.value(QStringLiteral("categories")).toStringList();
}

void StoredPreferences::readDbPath(const platform::Settings& settings) {
  if (settings.contains(kDbPath))
    dbPath = settings.value(kDbPath).toString();
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

void StoredPreferences::write(platform::Settings& settings, const QStringList& categoryList) const {
  const QVariantMap values{
      {kDbPath, dbPath},
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

}  // namespace quillery::prefs
