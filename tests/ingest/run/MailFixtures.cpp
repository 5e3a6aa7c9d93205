#include "MailFixtures.h"

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
  QByteArray subjectHeader = subject(i).toUtf8();
  if (i % 7 == 3)
    subjectHeader = "=?UTF-8?B?" + subject(i).toUtf8().toBase64() + "?=";
  QByteArray head;
  head += "From sender" + QByteArray::number(i) + "@example.com " +
          date.toString(QStringLiteral("ddd MMM d hh:mm:ss yyyy")).toLatin1() + "\n";
  head += "From: Sender " + QByteArray::number(i) + " <sender" + QByteArray::number(i) +
          "@example.com>\n";
  head += "To: Archive Owner <owner@example.org>\n";
  head += "Subject: " + subjectHeader + "\n";
  head += "Date: " + date.toString(Qt::RFC2822Date).toLatin1() + "\n";
  head += "Message-ID: <gen" + QByteArray::number(i) + "@fixtures.example>\n";
  head += "MIME-Version: 1.0\n";
  const QByteArray text = "Hello number " + QByteArray::number(i) + ".\nPath C:\\temp\\" +
                          QByteArray::number(i) + "\nRegards\n";
  if (i % 5 != 2) {
    return head + "Content-Type: text/plain; charset=utf-8\n\n" + text + "\n";
  }
  QByteArray body =
      "Content-Type: multipart/mixed; boundary=\"b" + QByteArray::number(i) + "\"\n\n--b" +
      QByteArray::number(i) + "\nContent-Type: text/plain; charset=utf-8\n\n" + text + "\n--b" +
      QByteArray::number(i) + "\nContent-Type: application/octet-stream; name=\"file" +
      QByteArray::number(i) + ".bin\"\nContent-Transfer-Encoding: base64\n" +
      "Content-Disposition: attachment; filename=\"file" + QByteArray::number(i) + ".bin\"\n\n";
  const QByteArray encoded = attachmentBytes(i).toBase64();
  for (qsizetype at = 0; at < encoded.size(); at += 76)
    body += encoded.mid(at, 76) + "\n";
  body += "--b" + QByteArray::number(i) + "--\n\n";
  return head + body;
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
