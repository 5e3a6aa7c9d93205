#pragma once

// Readable GoogleTest failure messages for Qt strings (and lists of them) instead of bytes.
#include <QString>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* out) {
  *out << '"' << text.toStdString() << '"';
}
