#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "search/SearchForm.h"

namespace quillery::search {

// One message as a plain scan sees it: every field the search can ask about.
struct ScanRecord {
  int id = 0;
  QString date, from, to, subject, mailbox, body;
  QStringList attachments;
  bool tagged = false;
  QString category, keywords, notes;
  int priority = 0;
};

// LIKE "%word%" as SQLite reads it for these words: case is ignored for ASCII letters only.
inline bool like(const QString& text, const QString& word) {
  const auto fold = [](QString s) {
    for (QChar& c : s)
      if (c >= QLatin1Char('A') && c <= QLatin1Char('Z'))
        c = QChar(c.unicode() + 32);
    return s;
  };
  return fold(text).contains(fold(word));
}

inline bool anyLike(const QStringList& texts, const QString& word) {
  for (const QString& t : texts)
    if (like(t, word))
      return true;
  return false;
}

// A search panel state, the statement the builder must make of it, and the same question
// answered by a plain scan over every message.
struct SearchRow {
  const char* name;
  std::function<void(SearchForm&)> fill;
  QString select;
  QString where;
  QString view;
  std::function<bool(const ScanRecord&)> matches;
};

inline QString selectFrom(const char* id, const char* tables) {
  return QStringLiteral("SELECT ") + QLatin1String(id) +
         QStringLiteral(
             ",date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' "
             "ELSE mailbox END),numAttach FROM ") +
         QLatin1String(tables) + QLatin1Char(' ');
}

inline QString viewFor(const char* pattern) {
  return QStringLiteral(
             "CREATE TEMP VIEW email_view AS SELECT distinct(attachments.id) AS theID,date_fld,"
             "from_fld,to_fld,subj_fld,mailbox,numAttach FROM email,attachments WHERE "
             "email.id=theID AND filename_fld LIKE ") +
         QLatin1String(pattern);
}

inline const QString kOrder = QStringLiteral(" ORDER BY UPPER(date_fld)");

// The rows, with words that the shared corpus answers in part.
inline QList<SearchRow> searchRows() {
  using F = SearchForm;
  const QString email = selectFrom("email.id", "email");
  const QString emailTags = selectFrom("email.id", "email,tags");
  return {
      {"AllOnAllAndEmptyCellsListEverythingInDateOrder",
       [](F&) {},
       email,
       kOrder,
       {},
       [](const ScanRecord&) { return true; }},
      {"FromSmithOrSubjectReport",
       [](F& f) {
         f.keyWords[F::From] = "smith";
         f.keyWords[F::Subject] = "report";
         f.toAndButton = "OR";
       },
       email,
       R"( WHERE (from_fld LIKE "%smith%" OR subj_fld LIKE "%report%"))" + kOrder,
       {},
       [](const ScanRecord& r) { return like(r.from, "smith") || like(r.subject, "report"); }},
      {"March2005",
       [](F& f) {
         f.beginYr = f.endYr = "2005";
         f.beginMo = f.endMo = "03";
         f.beginDa = "01";
         f.endDa = "31";
       },
       email,
       R"(WHERE date_fld >= "2005-03-01 00:00:00" AND date_fld <= "2005-03-31 99:99:99")" + kOrder,
       {},
       [](const ScanRecord& r) {
         return r.date >= "2005-03-01 00:00:00" && r.date <= "2005-03-31 99:99:99";
       }},
      {"OnlyAnEndYearKeepsTheOtherExtremes",
       [](F& f) { f.endYr = "2004"; },
       email,
       R"(WHERE date_fld >= "0000-00-00 00:00:00" AND date_fld <= "2004-12-31 99:99:99")" + kOrder,
       {},
       [](const ScanRecord& r) { return r.date <= "2004-12-31 99:99:99"; }},
      {"PriorityNoneIsStillACondition",
       [](F& f) { f.priorityCheck = true; },
       emailTags,
       " WHERE email.id=tags.id AND (priority_fld=0)" + kOrder,
       {},
       [](const ScanRecord& r) { return r.tagged && r.priority == 0; }},
      {"HighestSearchesForWhatTaggingStoresAsLowest",
       [](F& f) {
         f.priorityCheck = true;
         f.searchPriorityButton = "Highest";
       },
       emailTags,
       " WHERE email.id=tags.id AND (priority_fld=5)" + kOrder,
       {},
       [](const ScanRecord& r) { return r.tagged && r.priority == 5; }},
      {"QuotesAreDoubledInSubjectAndBodyOnly",
       [](F& f) {
         f.keyWords[F::Body] = "\"";
         f.keyWords[F::Subject] = "re";
         f.toAndButton = "OR";
       },
       email,
       R"( WHERE (subj_fld LIKE "%re%" AND body_fld LIKE "%""%"))" + kOrder,
       {},
       [](const ScanRecord& r) { return like(r.subject, "re") && r.body.contains('"'); }},
      {"AttachmentNameWithACategory",
       [](F& f) {
         f.keyWords[F::AttachmentName] = "gif";
         f.searchCatButton = "Work";
       },
       selectFrom("theID", "email_view,tags"),
       R"( WHERE theID=tags.id AND (cat_fld LIKE "%Work%"))" + kOrder, viewFor("'%gif%'"),
       [](const ScanRecord& r) {
         return anyLike(r.attachments, "gif") && r.tagged && like(r.category, "Work");
       }},
      {"AttachmentNameAlone", [](F& f) { f.keyWords[F::AttachmentName] = "p7"; },
       selectFrom("theID", "email_view"), kOrder, viewFor("'%p7%'"),
       [](const ScanRecord& r) { return anyLike(r.attachments, "p7"); }},
      {"AnAndAfterOrsClosesTheirBracket",
       [](F& f) {
         f.keyWords[F::From] = "gmail";
         f.keyWords[F::To] = "users";
         f.keyWords[F::Subject] = "search";
         f.keyWords[F::Mailbox] = "2022";
         f.fromAndButton = f.toAndButton = "OR";
         f.subjAndButton = "AND";
       },
       email,
       R"( WHERE (from_fld LIKE "%gmail%" OR to_fld LIKE "%users%" OR subj_fld LIKE "%search%") AND (mailbox LIKE "%2022%"))" +
           kOrder,
       {},
       [](const ScanRecord& r) {
         return (like(r.from, "gmail") || like(r.to, "users") || like(r.subject, "search")) &&
                like(r.mailbox, "2022");
       }},
      {"AnEmptyToLeavesTheConnectorBeforeTheSubjectToDecide",
       [](F& f) {
         f.keyWords[F::From] = "zawinski";
         f.keyWords[F::Subject] = "signed";
         f.fromAndButton = "AND";
         f.toAndButton = "OR";
       },
       email,
       R"( WHERE (from_fld LIKE "%zawinski%" OR subj_fld LIKE "%signed%"))" + kOrder,
       {},
       [](const ScanRecord& r) { return like(r.from, "zawinski") || like(r.subject, "signed"); }},
      {"TheConnectorBeforeToNeverOpensABracket",
       [](F& f) {
         f.keyWords[F::From] = "apache";
         f.keyWords[F::To] = "ponymail";
         f.keyWords[F::Body] = "search";
         f.fromAndButton = "AND";
         f.mailboxAndButton = "OR";
       },
       email,
       R"( WHERE (from_fld LIKE "%apache%" AND to_fld LIKE "%ponymail%" OR body_fld LIKE "%search%"))" +
           kOrder,
       {},
       [](const ScanRecord& r) {
         return (like(r.from, "apache") && like(r.to, "ponymail")) || like(r.body, "search");
       }},
      {"TagConnectorsArePlain",
       [](F& f) {
         f.searchCatButton = "Work";
         f.tagWords[F::Keywords] = "urgent";
         f.tagWords[F::Notes] = "call";
         f.priorityCheck = true;
         f.searchPriorityButton = "High";
         f.catAndButton = "OR";
         f.keywordsAndButton = "AND";
         f.priorityAndButton = "OR";
       },
       emailTags,
       R"( WHERE email.id=tags.id AND (cat_fld LIKE "%Work%" OR key_fld LIKE "%urgent%" AND notes_fld LIKE "%call%" OR priority_fld=4))" +
           kOrder,
       {},
       [](const ScanRecord& r) {
         return r.tagged &&
                (like(r.category, "Work") ||
                 (like(r.keywords, "urgent") && like(r.notes, "call")) || r.priority == 4);
       }},
      {"DateMessageAndTagPartsTogether",
       [](F& f) {
         f.beginYr = f.endYr = "1996";
         f.keyWords[F::From] = "netscape";
         f.tagWords[F::Keywords] = "urgent";
       },
       emailTags,
       R"(WHERE date_fld >= "1996-00-00 00:00:00" AND date_fld <= "1996-12-31 99:99:99" AND (from_fld LIKE "%netscape%") AND email.id=tags.id AND (key_fld LIKE "%urgent%"))" +
           kOrder,
       {},
       [](const ScanRecord& r) {
         return r.date.startsWith("1996") && like(r.from, "netscape") && r.tagged &&
                like(r.keywords, "urgent");
       }},
      {"APerCentSignIsAWildcard",
       [](F& f) { f.keyWords[F::Subject] = "encrypt%message"; },
       email,
       R"( WHERE (subj_fld LIKE "%encrypt%message%"))" + kOrder,
       {},
       [](const ScanRecord& r) {
         const qsizetype at = r.subject.indexOf("encrypt", 0, Qt::CaseInsensitive);
         return at >= 0 && r.subject.indexOf("message", at + 7, Qt::CaseInsensitive) >= 0;
       }},
      {"NotesQuotesDoubledAfterAnOrKeyword",
       [](F& f) {
         f.tagWords[F::Keywords] = "urgent";
         f.tagWords[F::Notes] = "say \"hi\"";
         f.keywordsAndButton = "OR";
       },
       emailTags,
       R"( WHERE email.id=tags.id AND (key_fld LIKE "%urgent%" OR notes_fld LIKE "%say ""hi""%"))" +
           kOrder,
       {},
       [](const ScanRecord& r) {
         return r.tagged && (like(r.keywords, "urgent") || like(r.notes, "say \"hi\""));
       }},
  };
}

}  // namespace quillery::search
