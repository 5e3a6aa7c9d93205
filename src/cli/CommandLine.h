#pragma once

#include <QString>
#include <QStringList>

namespace quillery::cli {

// The arguments of one command, read option by option. Every command takes
// `--archive PATH`; the rest is the command's own. The first mistake is kept and stops the
// reading, so a command reports exactly one thing that is wrong.
class CommandLine {
 public:
  // The arguments after the command's name.
  explicit CommandLine(QStringList arguments) : args_(std::move(arguments)) {}

  // The next argument, or false at the end or after a mistake. An argument that is not an
  // option ("--...") is handed out as well, for commands that take ids or file names.
  bool next(QString& argument);
  // The value after the option just read; a missing value is a mistake.
  QString value(const QString& option);
  // The values after the option just read, up to the next option; none is a mistake.
  QStringList values(const QString& option);
  // Whether the argument just read was taken as the archive option (its value is kept).
  bool takeArchive(const QString& argument);

  void fail(const QString& message);
  bool failed() const { return !error_.isEmpty(); }
  const QString& error() const { return error_; }

  // The archive file: the --archive value made absolute, else the archive path saved by the
  // window, else $HOME/Desktop/myemaildb.
  QString archivePath() const;

 private:
  static bool isOption(const QString& argument) { return argument.startsWith(QLatin1String("--")); }

  QStringList args_;
  qsizetype index_ = -1;
  QString archive_;
  QString error_;
};

}  // namespace quillery::cli
