#pragma once

#include <QByteArray>
#include <QString>

namespace quillery::test {

// Mail that the tests write themselves, so every stored field has a known expected value.
// Message i (from 0) is dated 2018-01-01 10:00:00 UTC plus i minutes, comes from
// "Sender i <sender<i>@example.com>" and has the subject "Message <i> of the run", except:
// every 7th (i % 7 == 3) has the RFC 2047 subject "Grüße <i>", every 11th (i % 11 == 4) the
// subject "Say "cheese" <i>"; every 5th (i % 5 == 2) carries the attachment "file<i>.bin"
// with the bytes of attachmentBytes(i). Every body holds the line "Path C:\temp\<i>".
struct MailFixtures {
  static QByteArray message(int i);
  static QByteArray attachmentBytes(int i);
  static QString subject(int i);
  // Writes count messages as one mbox file; false when the file cannot be written.
  static bool writeMbox(const QString& path, int count);
};

}  // namespace quillery::test
