#include "archive/IdList.h"

#include <climits>

namespace quillery::archive {
namespace {

// The integer a text writes in the plain way, if it does: an optional minus, then digits
// without leading zeros, within 32 bits and not kOther (whose text is kept as text).
bool plainInteger(const char* text, int& value) {
  const char* p = text;
  const bool negative = *p == '-';
  if (negative)
    ++p;
  if (*p < '0' || *p > '9' || (*p == '0' && (p[1] != '\0' || negative)))
    return false;
  long long magnitude = 0;
  for (; *p != '\0'; ++p) {
    if (*p < '0' || *p > '9' || magnitude > 1000000000LL)
      return false;
    magnitude = magnitude * 10 + (*p - '0');
  }
  const long long signedValue = negative ? -magnitude : magnitude;
  if (signedValue <= INT_MIN || signedValue > INT_MAX)
    return false;
  value = int(signedValue);
  return true;
}

}  // namespace

void IdList::append(const char* utf8) {
  int value = 0;
  if (plainInteger(utf8, value)) {
    numbers_.push_back(value);
    return;
  }
  others_.insert(size(), QString::fromUtf8(utf8));
  numbers_.push_back(kOther);
}

void IdList::append(const QString& text) {
  // A text with a NUL in it is no integer, and would be cut short as a C string.
  if (!text.contains(QChar(0))) {
    append(text.toUtf8().constData());
    return;
  }
  others_.insert(size(), text);
  numbers_.push_back(kOther);
}

void IdList::append(int id) {
  if (id == kOther)
    others_.insert(size(), QString::number(id));
  numbers_.push_back(id);
}

void IdList::clear() {
  numbers_.clear();
  numbers_.shrink_to_fit();
  others_.clear();
}

QString IdList::at(qsizetype i) const {
  const int number = numbers_.at(std::size_t(i));
  return number == kOther ? others_.value(i) : QString::number(number);
}

QStringList IdList::toStringList() const {
  QStringList texts;
  texts.reserve(size());
  for (qsizetype i = 0; i < size(); ++i)
    texts.append(at(i));
  return texts;
}

}  // namespace quillery::archive
