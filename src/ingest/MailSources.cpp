#include "ingest/MailSources.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStringDecoder>
#include <algorithm>

#include "platform/Dialogs.h"

namespace quillery::ingest {

namespace {

bool isHiddenFolderName(const QString& name) {
  static const QStringList kPrefixes{QStringLiteral("Bundles"), QStringLiteral("Mailbox"),
                                     QStringLiteral("Signatu")};
  return name.size() >= 7 && kPrefixes.contains(name.left(7));
}

}  // namespace

MailSources::MailSources(platform::Dialogs& dialogs, QString homeDir, QString findmailPath)
    : dialogs_(dialogs), homeDir_(std::move(homeDir)), findmailPath_(std::move(findmailPath)) {}

QString MailSources::mailFolder() const {
  return homeDir_ + QStringLiteral("/Library/Mail");
}

QList<int> MailSources::listMailAccounts(const QStringList& accountList) {
  sourceList.clear();
  const QString folder = mailFolder();
  // Hidden entries count too: the mail client's folder listing includes them.
  const QStringList names = QDir(folder).entryList(
      QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Unsorted);
  for (const QString& name : names) {
    if (QFileInfo(folder + QLatin1Char('/') + name).isDir() && !isHiddenFolderName(name))
      sourceList.append(name);
  }
  return rowsIn(accountList);
}

QList<int> MailSources::listMailboxes(const QStringList& mailboxList, const QString& messageFile) {
  listMailAccounts({});
  runFindmail(messageFile);
  sourceList.clear();

  QFile file(messageFile);
  if (!file.open(QIODevice::ReadOnly)) {
    dialogs_.critical(QString(), QStringLiteral("Couldn't open ") + messageFile);
    return {};
  }
  char line[3000];
  qint64 length = 0;
  while ((length = file.readLine(line, sizeof line)) > 0) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(QByteArrayView(line, length));
    if (!utf8.hasError())
      sourceList.append(text);
  }
  return rowsIn(mailboxList);
}

void MailSources::runFindmail(const QString& messageFile) const {
  // A list left from an earlier run (or a store run's record) must not pass for this one's
  // when the tool cannot run.
  QFile::remove(messageFile);
  QStringList arguments{findmailPath_, messageFile};
  arguments += sourceList;
  arguments.append(QStringLiteral("Mailboxes"));
  QProcess tool;
  // The tool finds the mail folder through HOME; it must be the one the accounts came from.
  QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
  environment.insert(QStringLiteral("HOME"), homeDir_);
  tool.setProcessEnvironment(environment);
  tool.setProcessChannelMode(QProcess::ForwardedChannels);
  tool.setInputChannelMode(QProcess::ForwardedInputChannel);
  tool.start(QStringLiteral("/usr/bin/nice"), arguments);
  if (tool.waitForStarted(-1))
    tool.waitForFinished(-1);
}

QStringList MailSources::entriesAt(QList<int> rows) const {
  std::sort(rows.begin(), rows.end());
  QStringList entries;
  for (int row : rows) {
    if (row >= 0 && row < sourceList.size())
      entries.append(sourceList.at(row));
  }
  return entries;
}

QList<int> MailSources::rowsIn(const QStringList& chosen) const {
  QList<int> rows;
  for (int row = 0; row < sourceList.size(); ++row) {
    if (chosen.contains(sourceList.at(row)))
      rows.append(row);
  }
  return rows;
}

}  // namespace quillery::ingest
