#include "search/Emailrow.h"

#include <cstring>

namespace quillery::search {
namespace {

void appendLength(QByteArray& out, qsizetype size) {
  while (size >= 0x80) {
    out.append(char(0x80 | (size & 0x7f)));
    size >>= 7;
  }
  out.append(char(size));
}

qsizetype lengthBytes(qsizetype size) {
  qsizetype bytes = 1;
  for (; size >= 0x80; size >>= 7)
    ++bytes;
  return bytes;
}

qsizetype readLength(const char*& at) {
  qsizetype size = 0;
  int shift = 0;
  unsigned char byte = 0;
  do {
    byte = static_cast<unsigned char>(*at++);
    size |= qsizetype(byte & 0x7f) << shift;
    shift += 7;
  } while (byte & 0x80);
  return size;
}

bool isAscii(QByteArrayView text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) >= 0x80)
      return false;
  }
  return true;
}

int order(long long a, long long b) {
  return a < b ? -1 : (a > b ? 1 : 0);
}

unsigned char folded(char c) {
  return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

// ASCII texts ordered as QString orders them: by code unit, letters folded when case is
// ignored, a text before the longer texts it begins.
int compareAscii(QByteArrayView a, QByteArrayView b, Qt::CaseSensitivity cs) {
  const qsizetype common = std::min(a.size(), b.size());
  for (qsizetype i = 0; i < common; ++i) {
    const unsigned char x =
        cs == Qt::CaseSensitive ? static_cast<unsigned char>(a[i]) : folded(a[i]);
    const unsigned char y =
        cs == Qt::CaseSensitive ? static_cast<unsigned char>(b[i]) : folded(b[i]);
    if (x != y)
      return x < y ? -1 : 1;
  }
  return order(a.size(), b.size());
}

}  // namespace

Emailrow::Emailrow(int emailID, int emailAtch, const QString& emailDate, const QString& emailFrom,
                   const QString& emailTo, const QString& emailSubject, const QString& emailMailbox)
    : emailID_(emailID), emailAtch_(emailAtch) {
  for (const QString* text : {&emailDate, &emailFrom, &emailTo, &emailSubject, &emailMailbox}) {
    const QByteArray utf8 = text->toUtf8();
    appendLength(texts_, utf8.size());
    texts_.append(utf8);
  }
  texts_.squeeze();
}

Emailrow Emailrow::fromColumns(int emailID, int emailAtch, const char* date, bool tagged,
                               const char* from, const char* to, const char* subject,
                               const char* mailbox) {
  Emailrow row(emailID, emailAtch);
  const char* const texts[] = {date, from, to, subject, mailbox};
  qsizetype sizes[5] = {};
  qsizetype total = 0;
  for (int i = 0; i < 5; ++i) {
    sizes[i] = texts[i] ? qsizetype(std::strlen(texts[i])) : 0;
    const qsizetype stored = sizes[i] + (i == Date && tagged ? 1 : 0);
    total += lengthBytes(stored) + stored;
  }
  // Exactly the size needed: a million rows leave no slack behind.
  row.texts_.reserve(total);
  for (int i = 0; i < 5; ++i) {
    appendLength(row.texts_, sizes[i] + (i == Date && tagged ? 1 : 0));
    row.texts_.append(texts[i] ? texts[i] : "", sizes[i]);
    if (i == Date && tagged)
      row.texts_.append('*');
  }
  return row;
}

QByteArrayView Emailrow::bytes(Field field) const {
  const char* at = texts_.constData();
  for (int i = 0; i < field; ++i) {
    const qsizetype size = readLength(at);
    at += size;
  }
  const qsizetype size = readLength(at);
  return QByteArrayView(at, size);
}

int Emailrow::compareTexts(const Emailrow& other, Field field, Qt::CaseSensitivity cs) const {
  const QByteArrayView a = bytes(field);
  const QByteArrayView b = other.bytes(field);
  if (isAscii(a) && isAscii(b))
    return compareAscii(a, b, cs);
  const int c = QString::compare(QString::fromUtf8(a), QString::fromUtf8(b), cs);
  return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

int Emailrow::emailIDComparison(const Emailrow& o) const {
  return order(emailID_, o.emailID_);
}
int Emailrow::emailAtchComparison(const Emailrow& o) const {
  return order(emailAtch_, o.emailAtch_);
}
int Emailrow::emailDateComparison(const Emailrow& o) const {
  return compareTexts(o, Date, Qt::CaseSensitive);
}
int Emailrow::emailFromComparison(const Emailrow& o) const {
  return compareTexts(o, From, Qt::CaseInsensitive);
}
int Emailrow::emailToComparison(const Emailrow& o) const {
  return compareTexts(o, To, Qt::CaseInsensitive);
}
int Emailrow::emailSubjectComparison(const Emailrow& o) const {
  return compareTexts(o, Subject, Qt::CaseInsensitive);
}
int Emailrow::emailMailboxComparison(const Emailrow& o) const {
  return compareTexts(o, Mailbox, Qt::CaseInsensitive);
}

}  // namespace quillery::search
