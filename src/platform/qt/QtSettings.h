#pragma once

#include <QSettings>

#include "platform/Settings.h"

namespace quillery::platform {

// Preferences in QSettings' native per-user format, or in an explicit file (tests, tools).
// A map value is kept as a group of its own keys, so a person reading or editing the file
// sees "family=...", "size=..." rather than serialised bytes; reading the key back gives the
// map again, its values as the strings the file holds.
class QtSettings : public Settings {
 public:
  QtSettings();
  explicit QtSettings(const QString& fileName);

  bool contains(const QString& key) const override;
  QVariant value(const QString& key) const override;
  void setValue(const QString& key, const QVariant& value) override;
  void registerDefaults(const QVariantMap& defaults) override;
  void sync() override;

  QString fileName() const { return settings_.fileName(); }

 private:
  bool isGroup(const QString& key) const;

  // QSettings reads through a const object only by beginning a group, which is not const.
  mutable QSettings settings_;
  QVariantMap defaults_;
};

}  // namespace quillery::platform
