#pragma once

#include <QFont>

#include "prefs/StoredPreferences.h"

namespace quillery::app {

// The list font between the preferences' description and a real font of the desktop.
class ListFont {
 public:
  // The font the description names. A family that is not installed gives the default list
  // font; a face the family lacks keeps the family's regular face, bold or italic as the
  // face's name says.
  static QFont toFont(const prefs::FontDescription& description);
  // Family, face (style name) and point size of a font.
  static prefs::FontDescription describe(const QFont& font);
};

}  // namespace quillery::app
