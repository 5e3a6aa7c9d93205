#include "cli/SearchOptions.h"

#include <QRegularExpression>

#include "cli/ArchiveSession.h"
#include "cli/CommandLine.h"
#include "search/EmailSearch.h"
#include "search/Priorities.h"
#include "search/SearchQueryBuilder.h"
#include "search/SqlQuery.h"

namespace quillery::cli {
namespace {

using search::SearchForm;

// "YYYY", "YYYY-MM" or "YYYY-MM-DD" as the three date pop-ups; a part left out stays "All".
bool takeDate(const QString& text, QString& year, QString& month, QString& day) {
  static const QRegularExpression form(
      QStringLiteral("^(\\d{4})(?:-(0[1-9]|1[0-2])(?:-(0[1-9]|[12]\\d|3[01]))?)?$"));
  const QRegularExpressionMatch match = form.match(text);
  if (!match.hasMatch())
    return false;
  year = match.captured(1);
  month = match.captured(2).isEmpty() ? QStringLiteral("All") : match.captured(2);
  day = match.captured(3).isEmpty() ? QStringLiteral("All") : match.captured(3);
  return true;
}

}  // namespace

bool SearchOptions::take(CommandLine& line, const QString& option) {
  static const QList<QPair<const char*, int>> kCells{
      {"--from", SearchForm::From},       {"--to", SearchForm::To},
      {"--subject", SearchForm::Subject}, {"--mailbox", SearchForm::Mailbox},
      {"--body", SearchForm::Body},       {"--attachment", SearchForm::AttachmentName}};
  for (const auto& [name, cell] : kCells) {
    if (option == QLatin1String(name)) {
      form.keyWords[std::size_t(cell)] = line.value(option);
      return true;
    }
  }
  const QList<QPair<const char*, QString*>> kConnectors{
      {"--before-to", &form.fromAndButton},          {"--before-subject", &form.toAndButton},
      {"--before-mailbox", &form.subjAndButton},     {"--before-body", &form.mailboxAndButton},
      {"--before-keywords", &form.catAndButton},     {"--before-notes", &form.keywordsAndButton},
      {"--before-priority", &form.priorityAndButton}};
  for (const auto& [name, connector] : kConnectors) {
    if (option == QLatin1String(name)) {
      const QString value = line.value(option).toUpper();
      if (value != QLatin1String("AND") && value != QLatin1String("OR"))
        line.fail(QStringLiteral("%1 wants AND or OR").arg(option));
      *connector = value;
      return true;
    }
  }
  if (option == QLatin1String("--begin") || option == QLatin1String("--end")) {
    const bool begin = option == QLatin1String("--begin");
    const QString value = line.value(option);
    if (!line.failed() &&
        !takeDate(value, begin ? form.beginYr : form.endYr, begin ? form.beginMo : form.endMo,
                  begin ? form.beginDa : form.endDa))
      line.fail(
          QStringLiteral("%1 wants YYYY, YYYY-MM or YYYY-MM-DD, not '%2'").arg(option, value));
    return true;
  }
  if (option == QLatin1String("--category")) {
    form.searchCatButton = line.value(option);
  } else if (option == QLatin1String("--keywords")) {
    form.tagWords[SearchForm::Keywords] = line.value(option);
  } else if (option == QLatin1String("--notes")) {
    form.tagWords[SearchForm::Notes] = line.value(option);
  } else if (option == QLatin1String("--priority")) {
    form.priorityCheck = true;
    form.searchPriorityButton = line.value(option);
    if (!line.failed() && !search::priorityTitles().contains(form.searchPriorityButton))
      line.fail(QStringLiteral("--priority wants one of %1")
                    .arg(search::priorityTitles().join(QStringLiteral(", "))));
  } else if (option == QLatin1String("--only-attachments")) {
    form.onlyAttachCheck = true;
  } else if (option == QLatin1String("--where")) {
    whereGiven = true;
    where = line.value(option);
  } else {
    return false;
  }
  return true;
}

QString SearchOptions::synopsis() {
  return QStringLiteral(
      "[--from TEXT] [--to TEXT] [--subject TEXT] [--mailbox TEXT] [--body TEXT]\n"
      "    [--attachment TEXT] [--begin DATE] [--end DATE] [--only-attachments]\n"
      "    [--category TEXT] [--keywords TEXT] [--notes TEXT] [--priority TITLE]\n"
      "    [--before-to|--before-subject|--before-mailbox|--before-body AND|OR]\n"
      "    [--before-keywords|--before-notes|--before-priority AND|OR] [--where TEXT]");
}

QString SearchOptions::help() {
  return QStringLiteral(
      "  --from, --to, --subject, --mailbox, --body TEXT\n"
      "                        Messages whose field contains TEXT (case is ignored for\n"
      "                        A-Z; % matches any text).\n"
      "  --attachment TEXT     Messages with an attachment whose name contains TEXT.\n"
      "  --begin DATE, --end DATE\n"
      "                        The date range, YYYY, YYYY-MM or YYYY-MM-DD, both days\n"
      "                        included.\n"
      "  --only-attachments    Only messages with attachments.\n"
      "  --category, --keywords, --notes TEXT\n"
      "                        Tagged messages whose tag field contains TEXT.\n"
      "  --priority TITLE      None, Highest, High, Medium, Low or Lowest, as the search\n"
      "                        panel reads them: Highest finds what tagging stored as\n"
      "                        Lowest, and the other way round.\n"
      "  --before-to, --before-subject, --before-mailbox, --before-body AND|OR\n"
      "                        The connector before that field (default OR, OR, AND,\n"
      "                        AND); from the subject on, an AND after ORs closes their\n"
      "                        bracket.\n"
      "  --before-keywords, --before-notes, --before-priority AND|OR\n"
      "                        The connectors of the tag fields (default AND).\n"
      "  --where TEXT          The SQL panel's WHERE part: replaces the condition that\n"
      "                        the other options make, as typed.\n");
}

bool SearchOptions::listMessages(ArchiveSession& session, const QString& path,
                                 QString* viewSql) const {
  search::SearchQueryBuilder builder(session.archive, session.dialogs, session.progress);
  search::EmailSearch search(session.archive, builder, session.list, session.progress);
  bool listed = false;
  if (whereGiven) {
    search::SqlQuery sql(session.archive, builder, search, session.list, session.dialogs);
    session.list.onlyAttachCheck = form.onlyAttachCheck;
    listed = sql.editSqlString(form, path) && sql.makeSQLString(where, path);
  } else {
    listed = search.retrieveEmails(form, path);
  }
  if (viewSql != nullptr)
    *viewSql = builder.searchViewSQL;
  return listed;
}

}  // namespace quillery::cli
