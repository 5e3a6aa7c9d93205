#include "cli/CliOptions.h"

#include <QDate>

namespace quillery::cli {

namespace {

bool isOption(const QString& argument) {
  return argument.startsWith(QStringLiteral("--"));
}

// "YYYY-MM-DD" as the pop-up titles of the store-date panel; false when not a real day.
bool parseDay(const QString& text, ingest::StoreDate& date) {
  const QDate day = QDate::fromString(text, QStringLiteral("yyyy-MM-dd"));
  if (!day.isValid() || text.size() != 10)
    return false;
  date = {text.mid(5, 2), text.mid(8, 2), text.left(4)};
  return true;
}

class Parser {
 public:
  explicit Parser(const QStringList& arguments) : args_(arguments) {}

  CliOptions run() {
    if (args_.isEmpty())
      return fail(QStringLiteral("no command given"));
    const QString command = args_.at(0);
    if (command == QLatin1String("--help") || command == QLatin1String("-h") ||
        command == QLatin1String("help")) {
      options_.command = CliOptions::Command::Help;
      return options_;
    }
    if (command == QLatin1String("--version")) {
      options_.command = CliOptions::Command::Version;
      return options_;
    }
    if (command == QLatin1String("store"))
      options_.command = CliOptions::Command::Store;
    else if (command == QLatin1String("list"))
      options_.command = CliOptions::Command::List;
    else
      return fail(QStringLiteral("unknown command '%1'").arg(command));
    for (index_ = 1; index_ < args_.size() && options_.error.isEmpty(); ++index_)
      option(args_.at(index_));
    if (options_.error.isEmpty() && options_.command == CliOptions::Command::Store &&
        options_.sourceKind == CliOptions::SourceKind::None)
      fail(QStringLiteral("store needs --mbox, --accounts or --mailboxes"));
    return options_;
  }

 private:
  CliOptions fail(const QString& message) {
    if (options_.error.isEmpty())
      options_.error = message;
    return options_;
  }

  QString value(const QString& name) {
    if (index_ + 1 >= args_.size() || isOption(args_.at(index_ + 1))) {
      fail(QStringLiteral("%1 needs a value").arg(name));
      return {};
    }
    return args_.at(++index_);
  }

  void sourceList(const QString& name, CliOptions::SourceKind kind) {
    if (options_.sourceKind != CliOptions::SourceKind::None) {
      fail(QStringLiteral("give only one of --mbox, --accounts and --mailboxes"));
      return;
    }
    options_.sourceKind = kind;
    while (index_ + 1 < args_.size() && !isOption(args_.at(index_ + 1)))
      options_.sources.append(args_.at(++index_));
    if (options_.sources.isEmpty())
      fail(QStringLiteral("%1 needs at least one value").arg(name));
  }

  void option(const QString& name) {
    const bool store = options_.command == CliOptions::Command::Store;
    auto& sw = options_.switches;
    if (name == QLatin1String("--archive")) {
      options_.archivePath = value(name);
    } else if (!store) {
      fail(QStringLiteral("unknown option '%1' for list").arg(name));
    } else if (name == QLatin1String("--mbox")) {
      sourceList(name, CliOptions::SourceKind::Mbox);
    } else if (name == QLatin1String("--accounts")) {
      sourceList(name, CliOptions::SourceKind::Accounts);
    } else if (name == QLatin1String("--mailboxes")) {
      sourceList(name, CliOptions::SourceKind::Mailboxes);
    } else if (name == QLatin1String("--begin") || name == QLatin1String("--end")) {
      const QString day = value(name);
      auto& date = name == QLatin1String("--begin") ? options_.dates.begin : options_.dates.end;
      if (options_.error.isEmpty() && !parseDay(day, date))
        fail(QStringLiteral("%1 wants a day as YYYY-MM-DD, not '%2'").arg(name, day));
    } else if (name == QLatin1String("--no-attachments")) {
      sw.attachState = false;
    } else if (name == QLatin1String("--no-html")) {
      sw.htmlState = false;
    } else if (name == QLatin1String("--trash")) {
      sw.trashState = true;
    } else if (name == QLatin1String("--all-mailboxes")) {
      sw.allmbState = true;
    } else if (name == QLatin1String("--no-source")) {
      sw.origState = false;
    } else if (name == QLatin1String("--progress-lines")) {
      options_.progressLines = true;
    } else {
      fail(QStringLiteral("unknown option '%1'").arg(name));
    }
  }

  const QStringList& args_;
  qsizetype index_ = 0;
  CliOptions options_;
};

}  // namespace

CliOptions CliOptions::parse(const QStringList& arguments) {
  CliOptions options = Parser(arguments).run();
  options.switches.mailboxesState = options.sourceKind == SourceKind::Mailboxes;
  return options;
}

QString CliOptions::helpText() {
  return QStringLiteral(
      "Usage:\n"
      "  quillery-cli store [--archive PATH] (--mbox FILE... | --accounts NAME... |\n"
      "                     --mailboxes LINE...) [--begin YYYY-MM-DD] [--end YYYY-MM-DD]\n"
      "                     [--no-attachments] [--no-html] [--trash] [--all-mailboxes]\n"
      "                     [--no-source] [--progress-lines]\n"
      "  quillery-cli list [--archive PATH]\n"
      "  quillery-cli --help | --version\n"
      "\n"
      "Stores mail into a Quillery archive without the window, for scripts and scheduled\n"
      "jobs. The run is the window's own store run: the same parser tool (domail, beside\n"
      "this program), the same duplicate handling (a message already in the archive is\n"
      "replaced and keeps its tags), the same store log (ARCHIVE.storelog) and summary.\n"
      "\n"
      "Commands:\n"
      "  store   Store the messages of the given sources, then print the summary.\n"
      "  list    List every message of the archive and print the counts and the seconds\n"
      "          the listing took.\n"
      "\n"
      "Sources (store; exactly one kind):\n"
      "  --mbox FILE...        mbox files (or Apple Mail \"Export Mailbox\" folders).\n"
      "  --accounts NAME...    Apple Mail account folders under $HOME/Library/Mail; their\n"
      "                        In and Sent boxes are stored, and the local \"Mailboxes\".\n"
      "  --mailboxes LINE...   single mailboxes, as findmail lists them.\n"
      "\n"
      "Options:\n"
      "  --archive PATH        The archive file. Default: the window's saved archive path,\n"
      "                        else $HOME/Desktop/myemaildb. Created when missing.\n"
      "  --begin YYYY-MM-DD    Store only messages dated on or after this day.\n"
      "  --end YYYY-MM-DD      Store only messages dated on or before this day.\n"
      "  --no-attachments      Do not store attachments.\n"
      "  --no-html             Do not store HTML parts as attachments.\n"
      "  --trash               Also store the Trash and Junk mailboxes (accounts).\n"
      "  --all-mailboxes       Store every mailbox of the accounts, not only In and Sent.\n"
      "  --no-source           Do not keep each message's raw source.\n"
      "  --progress-lines      Write \"TITLE COUNT SECONDS\" to standard error every 1,000\n"
      "                        messages instead of the terminal's progress line.\n"
      "\n"
      "Output: the summary on standard output; alerts on standard error as\n"
      "\"Title: message\"; a progress line on standard error when it is a terminal.\n"
      "The confirmation that the window asks is taken as given.\n"
      "\n"
      "Exit status: 0 when the run ended (also when some files were invalid: see the\n"
      "summary); 1 when the archive could not be opened, the run could not start\n"
      "(domail missing beside this program) or an alert reported an error during the run;\n"
      "2 when the command line is wrong.\n");
}

}  // namespace quillery::cli
