#include "cli/CommandLine.h"

#include <QFileInfo>

#include "platform/qt/QtSettings.h"
#include "prefs/StoredPreferences.h"

namespace quillery::cli {

bool CommandLine::next(QString& argument) {
  if (failed() || index_ + 1 >= args_.size())
    return false;
  argument = args_.at(++index_);
  return true;
}

QString CommandLine::value(const QString& option) {
  if (index_ + 1 >= args_.size() || isOption(args_.at(index_ + 1))) {
    fail(QStringLiteral("%1 needs a value").arg(option));
    return {};
  }
  return args_.at(++index_);
}

QStringList CommandLine::values(const QString& option) {
  QStringList taken;
  while (index_ + 1 < args_.size() && !isOption(args_.at(index_ + 1)))
    taken.append(args_.at(++index_));
  if (taken.isEmpty())
    fail(QStringLiteral("%1 needs at least one value").arg(option));
  return taken;
}

bool CommandLine::takeArchive(const QString& argument) {
  if (argument != QLatin1String("--archive"))
    return false;
  archive_ = value(argument);
  return true;
}

void CommandLine::fail(const QString& message) {
  if (error_.isEmpty())
    error_ = message;
}

QString CommandLine::archivePath() const {
  if (!archive_.isEmpty())
    return QFileInfo(archive_).absoluteFilePath();
  const platform::QtSettings settings;
  return prefs::StoredPreferences::archivePath(settings, qEnvironmentVariable("HOME"));
}

}  // namespace quillery::cli
