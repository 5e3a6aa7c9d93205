#include "StoredArchive.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "archive/TestFiles.h"
#include "support/MailFixtures.h"
#include "support/TestEnvironment.h"

namespace quillery::test {
namespace {

// The corpus's single messages as one mbox, each behind a postmark, "From " lines quoted.
QByteArray corpusMessages(const QString& corpus) {
  QByteArray mail;
  const QDir dir(corpus + "/mime");
  for (const QString& name : dir.entryList({"*.eml"}, QDir::Files, QDir::Name)) {
    QByteArray data = bytesOf(dir.filePath(name)).replace("\r\n", "\n");
    if (data.startsWith("From "))
      data = data.mid(data.indexOf('\n') + 1);
    mail += "From corpus@example.com Mon Jan  1 00:00:00 2001\n" +
            data.replace("\nFrom ", "\n>From ").trimmed() + "\n\n";
  }
  return mail;
}

QString build(const QString& archive, const QString& work) {
  const QString corpus = corpusDir();
  if (corpus.isEmpty())
    return "the shared mail corpus (../shared/corpus) is not here";
  QByteArray generated[2];
  for (int i = 0; i < 45; ++i)
    generated[i / 30] += MailFixtures::message(i);
  const QString withSource = work + "/with-source.mbox";
  const QString withoutSource = work + "/without-source.mbox";
  writeFile(withSource, corpusMessages(corpus) + generated[0] +
                            bytesOf(QUILLERY_SOURCE_DIR "/tests/export/extra-mail.mbox"));
  writeFile(withoutSource, generated[1]);
  QStringList mboxes;
  for (const QString& name : QDir(corpus + "/mbox").entryList({"*.mbox"}))
    mboxes.append(corpus + "/mbox/" + name);
  QDir(work).mkpath("Library");
  QFile::link(corpus + "/emlx/Mail", work + "/Library/Mail");
  const QList<QStringList> runs = {
      QStringList{"--mbox"} + mboxes + QStringList{withSource},
      {"--mbox", withoutSource, "--no-source"},
      {"--accounts", "IMAP-sample@imap.example.com", "POP-sample@pop.example.com"}};
  for (const QStringList& run : runs) {
    const ProgramResult result = runCli(QStringList{"store", "--archive", archive} + run, work);
    if (result.exitCode != 0)
      return "storing failed: " + result.err;
  }
  // Tags with quotes and backslashes on a few messages, one with a priority alone.
  return execOn(archive,
                "INSERT INTO tags VALUES(3,'Work','it''s \\ key',2,'say \"hi\"');"
                "INSERT INTO tags VALUES(40,'','',4,'');"
                "INSERT INTO tags VALUES(70,'Home','plain',0,'notes');");
}

}  // namespace

QString StoredArchive::copyTo(const QString& path) {
  static QTemporaryDir work;
  static const QString archive = work.filePath("stored.db");
  static const QString failure = build(archive, work.path());
  if (!failure.isEmpty())
    return failure;
  QFile::remove(path);
  return QFile::copy(archive, path) ? QString() : "cannot copy the archive";
}

}  // namespace quillery::test
