#include "search/SearchQueryBuilder.h"

#include "archive/Archive.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/Priorities.h"

namespace quillery::search {
namespace {

const QString kAll = QStringLiteral("All");
const QString kOr = QStringLiteral("OR");

QString titleOr(const QString& title, const char* all) {
  return title == kAll ? QString::fromLatin1(all) : title;
}

// `column LIKE "%text%"`, the text as it stands.
QString likeTerm(const char* column, const QString& text) {
  return QLatin1String(column) + QStringLiteral(" LIKE \"%") + text + QStringLiteral("%\"");
}

QString quotesDoubled(QString text) {
  return text.replace(QLatin1Char('"'), QStringLiteral("\"\""));
}

// The date condition, or "" when all six pop-ups stand on "All". The end time "99:99:99"
// makes the last day inclusive, because dates compare as text.
QString dateCondition(const SearchForm& f) {
  const QString begin = titleOr(f.beginYr, "0000") + QLatin1Char('-') + titleOr(f.beginMo, "00") +
                        QLatin1Char('-') + titleOr(f.beginDa, "00") + QStringLiteral(" 00:00:00");
  const QString end = titleOr(f.endYr, "9999") + QLatin1Char('-') + titleOr(f.endMo, "12") +
                      QLatin1Char('-') + titleOr(f.endDa, "31") + QStringLiteral(" 99:99:99");
  if (begin == QLatin1String("0000-00-00 00:00:00") && end == QLatin1String("9999-12-31 99:99:99"))
    return {};
  return QStringLiteral("WHERE date_fld >= \"") + begin + QStringLiteral("\" AND date_fld <= \"") +
         end + QLatin1Char('"');
}

// The group of the five message fields. The connector is the pop-up standing before a field
// even when the field above it is empty. From the subject on, an AND after an OR closes the
// OR's bracket and opens a new one; the connector before "to" never does.
QString messageGroup(const SearchForm& f) {
  const auto& w = f.keyWords;
  QString group;
  int terms = 0;
  bool openOr = false;
  if (!w[SearchForm::From].isEmpty()) {
    group += likeTerm("from_fld", w[SearchForm::From]);
    ++terms;
  }
  openOr = false;
  if (!w[SearchForm::To].isEmpty()) {
    if (terms > 0) {
      group += QLatin1Char(' ') + f.fromAndButton + QLatin1Char(' ');
      openOr = f.fromAndButton == kOr;
    }
    group += likeTerm("to_fld", w[SearchForm::To]);
    ++terms;
  }
  const struct {
    const QString& text;
    const QString& connector;
    const char* column;
    bool doubleQuotes;
  } later[] = {{w[SearchForm::Subject], f.toAndButton, "subj_fld", true},
               {w[SearchForm::Mailbox], f.subjAndButton, "mailbox", false},
               {w[SearchForm::Body], f.mailboxAndButton, "body_fld", true}};
  for (const auto& field : later) {
    if (field.text.isEmpty())
      continue;
    if (terms > 0) {
      if (field.connector == kOr) {
        group += QStringLiteral(" OR ");
        openOr = true;
      } else if (openOr) {
        group += QStringLiteral(") AND (");
        openOr = false;
      } else {
        group += QStringLiteral(" AND ");
      }
    }
    group += likeTerm(field.column, field.doubleQuotes ? quotesDoubled(field.text) : field.text);
    ++terms;
  }
  return group;
}

// The group of the tag fields, with plain connectors.
QString tagGroup(const SearchForm& f, const QString& category, const QString& priorityText) {
  QString group;
  bool written = false;
  const auto connect = [&](const QString& connector) {
    if (written)
      group += QLatin1Char(' ') + connector + QLatin1Char(' ');
    written = true;
  };
  if (!category.isEmpty()) {
    group += likeTerm("cat_fld", category);
    written = true;
  }
  if (!f.tagWords[SearchForm::Keywords].isEmpty()) {
    connect(f.catAndButton);
    group += likeTerm("key_fld", f.tagWords[SearchForm::Keywords]);
  }
  if (!f.tagWords[SearchForm::Notes].isEmpty()) {
    connect(f.keywordsAndButton);
    group += likeTerm("notes_fld", quotesDoubled(f.tagWords[SearchForm::Notes]));
  }
  if (!priorityText.isEmpty()) {
    connect(f.priorityAndButton);
    group += QStringLiteral("priority_fld=") +
             QString::number(searchPriorityNumber(f.searchPriorityButton));
  }
  return group;
}

}  // namespace

SearchQueryBuilder::SearchQueryBuilder(archive::Archive& archive, platform::Dialogs& dialogs,
                                       platform::Progress& progress)
    : archive_(archive), dialogs_(dialogs), progress_(progress) {}

void SearchQueryBuilder::makeSearchSQL(const SearchForm& form, const QString& dbPath) {
  archive_.close();
  archive_.openDB(dbPath);
  if (archive_.openFailed)
    return;
  const QString category =
      form.searchCatButton == QLatin1String("None") ? QString() : form.searchCatButton;
  // "None" with the check on is still a condition: priority_fld=0.
  const QString priorityText = form.priorityCheck ? form.searchPriorityButton : QString();
  const QString& attachment = form.keyWords[SearchForm::AttachmentName];
  const bool tagSearch = !category.isEmpty() || !form.tagWords[SearchForm::Keywords].isEmpty() ||
                         !form.tagWords[SearchForm::Notes].isEmpty() || !priorityText.isEmpty();

  QString idExpression = QStringLiteral("email.id");
  QString tables = tagSearch ? QStringLiteral("email,tags") : QStringLiteral("email");
  searchViewSQL.clear();
  if (!attachment.isEmpty()) {
    if (!makeAttachmentView(QStringLiteral("'%") + attachment + QStringLiteral("%'"), dbPath))
      return;
    tables = tagSearch ? QStringLiteral("email_view,tags") : QStringLiteral("email_view");
    idExpression = QStringLiteral("theID");
  }

  QString where = dateCondition(form);
  const QString select = QStringLiteral("SELECT ") + idExpression +
                         QStringLiteral(
                             ",date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN "
                             "'' ELSE mailbox END),numAttach FROM ") +
                         tables + QLatin1Char(' ');
  const QString messages = messageGroup(form);
  if (!messages.isEmpty())
    where = (where.isEmpty() ? QStringLiteral(" WHERE (") : where + QStringLiteral(" AND (")) +
            messages + QLatin1Char(')');
  if (tagSearch) {
    const QString join = idExpression + QStringLiteral("=tags.id AND (");
    where = where.contains(QLatin1String("WHERE")) ? where + QStringLiteral(" AND ") + join
                                                   : QStringLiteral(" WHERE ") + join;
    where += tagGroup(form, category, priorityText) + QLatin1Char(')');
  }
  searchSelectSQL = select;
  searchWhereSQL = where + QStringLiteral(" ORDER BY UPPER(date_fld)");
}

bool SearchQueryBuilder::makeAttachmentView(const QString& pattern, const QString& dbPath) {
  archive_.openDB(dbPath);
  if (archive_.openFailed) {
    progress_.close();
    archive_.openFailed = false;
    return false;
  }
  const QString view = QStringLiteral(
                           "CREATE TEMP VIEW email_view AS SELECT distinct(attachments.id) AS "
                           "theID,date_fld,from_fld,to_fld,subj_fld,mailbox,numAttach FROM "
                           "email,attachments WHERE email.id=theID AND filename_fld LIKE ") +
                       pattern;
  const archive::ExecResult result = archive_.exec(view);
  if (!result.ok()) {
    dialogs_.critical(QString(), QStringLiteral("SQL error: ") + result.error);
    progress_.close();
    return false;
  }
  searchViewSQL = view;
  return true;
}

}  // namespace quillery::search
