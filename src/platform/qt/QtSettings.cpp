#include "platform/qt/QtSettings.h"

namespace quillery::platform {

QtSettings::QtSettings() : settings_(QStringLiteral("Quillery"), QStringLiteral("Quillery")) {}

QtSettings::QtSettings(const QString& fileName) : settings_(fileName, QSettings::IniFormat) {}

bool QtSettings::contains(const QString& key) const {
  return settings_.contains(key);
}

QVariant QtSettings::value(const QString& key) const {
  if (settings_.contains(key))
    return settings_.value(key);
  return defaults_.value(key);
}

void QtSettings::setValue(const QString& key, const QVariant& value) {
  settings_.setValue(key, value);
}

void QtSettings::registerDefaults(const QVariantMap& defaults) {
  defaults_ = defaults;
}

void QtSettings::sync() {
  settings_.sync();
}

}  // namespace quillery::platform
