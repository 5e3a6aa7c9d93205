#include "StoredArchive.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "MailFixtures.h"
#include "archive/TestFiles.h"
#include "support/TestEnvironment.h"

namespace quillery::test {
namespace {

QByteArray postmark(int i) {
  return "From extra" + QByteArray::number(i) + "@example.com Mon Mar  5 10:0" +
         QByteArray::number(i) + ":00 2012\n";
}

QByteArray header(int i, const QByteArray& subject, const QByteArray& from) {
  return postmark(i) + "From: " + from +
         "\nTo: Archive Owner <owner@example.org>\nSubject: " + subject +
         "\nDate: Mon, 5 Mar 2012 10:0" + QByteArray::number(i) + ":00 +0000\nMessage-ID: <extra" +
         QByteArray::number(i) + "@fixtures.example>\nMIME-Version: 1.0\n";
}

// Messages for the edges the generated run lacks.
QByteArray extraMail() {
  const QByteArray plain =
      "Content-Type: text/plain; charset=utf-8\nContent-Transfer-Encoding: 8bit\n\n";
  QByteArray mail;
  mail += header(0, "Café ünïcode", "Zoë <zoe@example.com>") + plain + "Grüße aus Köln — 😀\n\n";
  mail += header(1, "It's C:\\dir\\file", "O'Brien \\ Co <ob@example.com>") + plain +
          "A 'single' and a \"double\" quote, a backslash \\ and a tab\there.\n\n";
  mail += header(2, QByteArray(200, 'L') + " long subject", "long@example.com") + plain +
          "The subject is longer than any varchar(127).\n\n";
  mail +=
      header(3, "=?UTF-8?B?" + QByteArray("Party 🎉 time").toBase64() + "?=", "emoji@example.com") +
      plain + "Four-byte characters in the subject.\n\n";
  mail += header(4, "Plain text attachment", "text@example.com") +
          "Content-Type: multipart/mixed; boundary=\"tb\"\n\n--tb\nContent-Type: text/plain\n\n"
          "See the notes.\n--tb\nContent-Type: text/plain; name=\"notes 'v1'.txt\"\n"
          "Content-Disposition: attachment; filename=\"notes 'v1'.txt\"\n\n"
          "Line with 'quotes' and C:\\path\\x\n--tb--\n\n";
  mail += header(5, StoredArchive::fromLineSubject().toUtf8(), "lines@example.com") + plain +
          "Before.\n>From here on the line starts like a separator.\nAfter.\n\n";
  return mail;
}

QByteArray generated(int from, int to) {
  QByteArray mail;
  for (int i = from; i < to; ++i)
    mail += MailFixtures::message(i);
  return mail;
}

// The corpus's single messages as one mbox, each behind a postmark of its own.
QByteArray corpusMessages(const QString& corpus) {
  QByteArray mail;
  const QDir dir(corpus + QStringLiteral("/mime"));
  for (const QString& name : dir.entryList({QStringLiteral("*.eml")}, QDir::Files, QDir::Name)) {
    QFile file(dir.filePath(name));
    if (!file.open(QIODevice::ReadOnly))
      continue;
    QByteArray data = file.readAll();
    data.replace("\r\n", "\n");
    if (data.startsWith("From "))
      data = data.mid(data.indexOf('\n') + 1);
    data.replace("\nFrom ", "\n>From ");
    mail += "From corpus@example.com Mon Jan  1 00:00:00 2001\n" + data.trimmed() + "\n\n";
  }
  return mail;
}

QString build(const QString& archive, const QString& work) {
  const QString corpus = corpusDir();
  if (corpus.isEmpty())
    return QStringLiteral("the shared mail corpus (../shared/corpus) is not here");
  const QString withSource = work + QStringLiteral("/with-source.mbox");
  const QString withoutSource = work + QStringLiteral("/without-source.mbox");
  if (!writeFile(withSource, corpusMessages(corpus) + generated(0, 30) + extraMail()) ||
      !writeFile(withoutSource, generated(30, 45)))
    return QStringLiteral("cannot write the generated mail");
  QStringList mboxes = QDir(corpus + QStringLiteral("/mbox")).entryList({QStringLiteral("*.mbox")});
  for (QString& name : mboxes)
    name = corpus + QStringLiteral("/mbox/") + name;
  QDir(work).mkpath(QStringLiteral("Library"));
  QFile::link(corpus + QStringLiteral("/emlx/Mail"), work + QStringLiteral("/Library/Mail"));
  const QList<QStringList> runs = {
      QStringList{"--mbox"} + mboxes + QStringList{withSource},
      {"--mbox", withoutSource, "--no-source"},
      {"--accounts", "IMAP-sample@imap.example.com", "POP-sample@pop.example.com"}};
  for (const QStringList& run : runs) {
    const ProgramResult result = runCli(QStringList{"store", "--archive", archive} + run, work);
    if (result.exitCode != 0)
      return QStringLiteral("storing failed: ") + result.err;
  }
  // Tags with quotes and backslashes on a few messages, one with a priority alone.
  return execOn(archive,
                QStringLiteral("INSERT INTO tags VALUES(3,'Work','it''s \\ key',2,'say \"hi\"');"
                               "INSERT INTO tags VALUES(40,'','',4,'');"
                               "INSERT INTO tags VALUES(70,'Home','plain',0,'notes');"));
}

}  // namespace

ProgramResult runProgram(const QString& program, const QStringList& arguments,
                         const QByteArray& input, const QString& home) {
  QProcess process;
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("TZ"), QStringLiteral("UTC"));
  if (!home.isEmpty()) {
    environment.insert(QStringLiteral("HOME"), home);
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), home + QStringLiteral("/.config"));
  }
  process.setProcessEnvironment(environment);
  process.start(program, arguments);
  if (!input.isEmpty())
    process.write(input);
  process.closeWriteChannel();
  if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
    return {-1, {}, process.errorString()};
  return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
          QString::fromUtf8(process.readAllStandardError())};
}

ProgramResult runCli(const QStringList& arguments, const QString& home) {
  return runProgram(toolPath(QStringLiteral("quillery-cli")), arguments, {}, home);
}

QString StoredArchive::fromLineSubject() {
  return QStringLiteral("A From line in the body");
}

QString StoredArchive::copyTo(const QString& path) {
  static QTemporaryDir work;
  static const QString archive = work.filePath(QStringLiteral("stored.db"));
  static const QString failure = build(archive, work.path());
  if (!failure.isEmpty())
    return failure;
  QFile::remove(path);
  return QFile::copy(archive, path) ? QString() : QStringLiteral("cannot copy the archive");
}

}  // namespace quillery::test
