#pragma once

#include <QSettings>

#include "platform/Settings.h"

namespace quillery::platform {

// Preferences in QSettings' native per-user format, or in an explicit file (tests, tools).
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
  QSettings settings_;
  QVariantMap defaults_;
};

}  // namespace quillery::platform
