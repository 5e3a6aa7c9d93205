#include "support/MailFixtures.h"

#include <QDateTime>
#include <QFile>
#include <QTimeZone>

namespace quillery::test {

QByteArray MailFixtures::attachmentBytes(int i) {
  QByteArray bytes;
  for (int k = 0; k < 300 + i; ++k)
    bytes.append(static_cast<char>((k * 31 + i) & 0xff));
  return bytes;
}

QString MailFixtures::subject(int i) {
  if (i % 7 == 3)
    return QStringLiteral("Grüße %1").arg(i);
  if (i % 11 == 4)
    return QStringLiteral("Say \"cheese\" %1").arg(i);
  return QStringLiteral("Message %1 of the run").arg(i);
}

QByteArray MailFixtures::message(int i) {
  const QDateTime date =
      QDateTime(QDate(2018, 1, 1), QTime(10, 0), QTimeZone::utc()).addSecs(60LL * i);
  const QByteArray n = QByteArray::number(i);
  const QByteArray subjectHeader =
      i % 7 == 3 ? "=?UTF-8?B?" + subject(i).toUtf8().toBase64() + "?=" : subject(i).toUtf8();
  const QByteArray head =
      "From sender" + n + "@example.com " +
      date.toString(QStringLiteral("ddd MMM d hh:mm:ss yyyy")).toLatin1() + "\nFrom: Sender " + n +
      " <sender" + n +
      "@example.com>\nTo: Archive Owner <owner@example.org>\nSubject: " + subjectHeader +
      "\nDate: " + date.toString(Qt::RFC2822Date).toLatin1() + "\nMessage-ID: <gen" + n +
      "@fixtures.example>\nMIME-Version: 1.0\n";
  const QByteArray text = "Hello number " + n + ".\nPath C:\\temp\\" + n + "\nRegards\n";
  if (i % 5 != 2)
    return head + "Content-Type: text/plain; charset=utf-8\n\n" + text + "\n";
  QByteArray body = "Content-Type: multipart/mixed; boundary=\"b" + n + "\"\n\n--b" + n +
                    "\nContent-Type: text/plain; charset=utf-8\n\n" + text + "\n--b" + n +
                    "\nContent-Type: application/octet-stream; name=\"file" + n +
                    ".bin\"\nContent-Transfer-Encoding: base64\nContent-Disposition: attachment; "
                    "filename=\"file" +
                    n + ".bin\"\n\n";
  const QByteArray encoded = attachmentBytes(i).toBase64();
  for (qsizetype at = 0; at < encoded.size(); at += 76)
    body += encoded.mid(at, 76) + "\n";
  return head + body + "--b" + n + "--\n\n";
}

bool MailFixtures::writeMbox(const QString& path, int count) {
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
    return false;
  for (int i = 0; i < count; ++i)
    file.write(message(i));
  return file.error() == QFile::NoError;
}

}  // namespace quillery::test
