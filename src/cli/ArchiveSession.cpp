#include "cli/ArchiveSession.h"

#include <QStringList>

#include "archive/Statements.h"
#include "cli/Console.h"

namespace quillery::cli {

ArchiveSession::ArchiveSession()
    : progress(ConsoleProgress::detectMode()),
      archive(dialogs, files),
      list(archive, dialogs, progress) {}

bool ArchiveSession::open(const QString& archivePath) {
  path = archivePath;
  archive.openDB(path);
  return !archive.openFailed;
}

bool ArchiveSession::openWithMessages(const QString& archivePath, const QList<int>& ids,
                                      const char* undone) {
  if (!open(archivePath))
    return false;
  QStringList texts;
  for (const int id : ids)
    texts.append(QString::number(id));
  archive.sqlText =
      archive::listStatement(QStringLiteral(" WHERE id IN (") + texts.join(QLatin1Char(',')) +
                             QStringLiteral(") ORDER BY id"));
  list.retrieve(path);
  if (failed())
    return false;
  QList<int> missing = ids;
  for (const search::Emailrow& row : std::as_const(list.emailRows))
    missing.removeAll(row.emailID());
  if (missing.isEmpty())
    return true;
  print(stderr, QStringLiteral("quillery-cli: no message with id %1; nothing was %2\n")
                    .arg(missing.first())
                    .arg(QLatin1String(undone)));
  return false;
}

QList<int> ArchiveSession::allRows() const {
  QList<int> rows;
  for (int row = 0; row < list.emailRows.size(); ++row)
    rows.append(row);
  return rows;
}

QString ArchiveSession::listLine(const search::Emailrow& row) {
  const QChar tab(QLatin1Char('\t'));
  return QString::number(row.emailID()) + tab + row.emailDate() + tab + row.emailFrom() + tab +
         row.emailTo() + tab + row.emailSubject() + tab + row.emailMailbox() + QLatin1Char('\n');
}

bool takeMessageId(const QString& argument, QList<int>& ids) {
  bool ok = false;
  const int id = argument.toInt(&ok);
  if (!ok || id <= 0)
    return false;
  if (!ids.contains(id))
    ids.append(id);
  return true;
}

}  // namespace quillery::cli
