#pragma once

#include <QFont>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace quillery::platform {
class Settings;
}

namespace quillery::app {

// The preferences as the application holds them while it runs, and their twelve keys in the
// per-user settings store. The archive path ("dbPath") lives in the setup panel's field and
// the categories in the category list; both are handed in when storing.
class StoredPreferences {
 public:
  // "Lucida Grande" at 10.0 points: the list font of a first run, and the one used when the
  // stored font is missing or names a family that is not installed.
  static QFont defaultFont();
  // The font as stored under "panelFont": its family, face (style name) and point size.
  static QVariantMap fontAttributes(const QFont& font);
  // The font those attributes describe, or defaultFont() when there are none, the size is not
  // positive or the family is not installed. A face the family lacks keeps the family's
  // regular face, bold or italic as the face's name says.
  static QFont fontFromAttributes(const QVariant& attributes);

  // The stored "categories" array, empty when absent.
  static QStringList storedCategories(const platform::Settings& settings);

  // Takes the stored values into the run-time state. A switch takes a stored value only when
  // it is non-zero, so a switch that is on stays on over a stored 0; "mailboxesState" is
  // taken as stored (0 when absent). "backupPath" is taken only when stored. The two source
  // lists become the stored arrays (empty when absent); the font is rebuilt from "panelFont".
  void read(const platform::Settings& settings);

  // Stores all twelve keys (switches as integers, the font as its attributes), registers the
  // same values as the store's defaults and asks the store to write them to disk.
  void write(platform::Settings& settings, const QString& dbPath,
             const QStringList& categoryList) const;

  QString backupPath;
  QStringList accountList;
  QStringList mailboxList;
  QFont currentFont = defaultFont();
  int allmbState = 0;
  int attachState = 0;
  int htmlState = 0;
  int trashState = 0;
  int origState = 0;
  int mailboxesState = 0;
};

}  // namespace quillery::app
