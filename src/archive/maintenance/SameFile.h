#pragma once

#include <QString>

namespace quillery::maintenance {

// Whether the two paths name one file: the same text, or, when the file exists, the same file
// reached another way (a relative path, a link).
bool isSameFile(const QString& first, const QString& second);

}  // namespace quillery::maintenance
