#include "platform/qt/QtSettings.h"

namespace quillery::platform {

QtSettings::QtSettings() : settings_(QStringLiteral("Quillery"), QStringLiteral("Quillery")) {}

QtSettings::QtSettings(const QString& fileName) : settings_(fileName, QSettings::IniFormat) {}

bool QtSettings::isGroup(const QString& key) const {
  return settings_.childGroups().contains(key);
}

bool QtSettings::contains(const QString& key) const {
  return settings_.contains(key) || isGroup(key);
}

QVariant QtSettings::value(const QString& key) const {
  if (settings_.contains(key))
    return settings_.value(key);
  if (isGroup(key)) {
    QVariantMap map;
    settings_.beginGroup(key);
    const QStringList keys = settings_.childKeys();
    for (const QString& k : keys)
      map.insert(k, settings_.value(k));
    settings_.endGroup();
    return map;
  }
  return defaults_.value(key);
}

void QtSettings::setValue(const QString& key, const QVariant& value) {
  // A key changes between a plain value and a group without leaving the other form behind.
  settings_.remove(key);
  if (value.typeId() != QMetaType::QVariantMap) {
    settings_.setValue(key, value);
    return;
  }
  const QVariantMap map = value.toMap();
  settings_.beginGroup(key);
  for (auto it = map.cbegin(); it != map.cend(); ++it)
    settings_.setValue(it.key(), it.value());
  settings_.endGroup();
}

void QtSettings::registerDefaults(const QVariantMap& defaults) {
  defaults_ = defaults;
}

void QtSettings::sync() {
  settings_.sync();
}

}  // namespace quillery::platform
