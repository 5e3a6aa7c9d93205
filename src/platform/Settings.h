#pragma once

#include <QString>
#include <QVariant>
#include <QVariantMap>

namespace quillery::platform {

// The per-user preferences store: strings, integers, string lists and one small map.
class Settings {
 public:
  virtual ~Settings() = default;

  virtual bool contains(const QString& key) const = 0;
  // The stored value, else the registered default, else an invalid QVariant.
  virtual QVariant value(const QString& key) const = 0;
  virtual void setValue(const QString& key, const QVariant& value) = 0;
  // Values that value() answers for keys that are not stored.
  virtual void registerDefaults(const QVariantMap& defaults) = 0;
  // Writes pending changes to disk.
  virtual void sync() = 0;
};

}  // namespace quillery::platform
