#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace quillery::platform {
class Settings;
}

namespace quillery::prefs {

// A font as the preferences keep it: family, face (style name, "" for the family's regular
// face) and size in points. The window makes a real font of it; a family that is not
// installed falls back there, not here.
struct FontDescription {
  QString family;
  QString face;
  double size = 0.0;
  bool operator==(const FontDescription&) const = default;
};

// The preferences as the application holds them while it runs, and their twelve keys in the
// per-user settings store: "dbPath", "backupPath", "accounts", "mailboxes", "categories",
// "panelFont", "allmbState", "attachState", "htmlState", "trashState", "origState",
// "mailboxesState". The window and quillery-cli read the same values through this class.
// The categories are the category list's; they are handed in when storing.
class StoredPreferences {
 public:
  // "Lucida Grande" at 10.0 points: the list font of a first run, and the one used when the
  // stored font is missing or unusable.
  static FontDescription defaultFont();
  // homeDir + "/Desktop/myemaildb": the archive path of a first run.
  static QString defaultDbPath(const QString& homeDir);
  // The archive path saved by the window, else the first-run default.
  static QString archivePath(const platform::Settings& settings, const QString& homeDir);
  // The stored "categories" array, empty when absent.
  static QStringList storedCategories(const platform::Settings& settings);

  // The stored "dbPath" into dbPath when it is stored (even when it is ""); otherwise dbPath
  // is left as it is.
  void readDbPath(const platform::Settings& settings);
  // Takes the other stored values into the run-time state. A switch takes a stored value only
  // when it is non-zero, so a switch that is on stays on over a stored 0; "mailboxesState"
  // is taken as stored (0 when absent). "backupPath" is taken only when stored. The two
  // source lists become the stored arrays (empty when absent); the font becomes the stored
  // family, face and size, or defaultFont() when there is no usable entry.
  void read(const platform::Settings& settings);

  // Stores all twelve keys (switches as integers, the font as family, face and size),
  // registers the same values as the store's defaults and asks the store to write them.
  void write(platform::Settings& settings, const QStringList& categoryList) const;

  QString dbPath;
  QString backupPath;
  QStringList accountList;
  QStringList mailboxList;
  FontDescription currentFont = defaultFont();
  int allmbState = 0;
  int attachState = 0;
  int htmlState = 0;
  int trashState = 0;
  int origState = 0;
  int mailboxesState = 0;
};

}  // namespace quillery::prefs
