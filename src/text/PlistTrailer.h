#pragma once

#include <QString>

namespace quillery::text {

// The property-list trailer that the Mac's mail client appends to a message file.
class PlistTrailer {
 public:
  // Cuts the trailer from a raw message source: from the "<?xml" that follows a point 100
  // characters before "Apple Computer//DTD PLIST" to the end. A source without that marker,
  // with the marker within its first 100 characters, or without "<?xml" after the point (or
  // only at its very start) is left as it is.
  static void stripPlist(QString& source);
};

}  // namespace quillery::text
