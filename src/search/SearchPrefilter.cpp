#include "search/SearchPrefilter.h"

#include <QList>

#include "archive/IndexFile.h"
#include "archive/SearchIndex.h"
#include "archive/WordTokenizer.h"

namespace quillery::search {
namespace {

// At most this many runs of one pattern (the longest) are looked up: more narrow little
// further and each costs a walk through the vocabulary and the index.
constexpr int kMostRuns = 6;

const QStringList kEmailColumns = {
    QStringLiteral("id"),       QStringLiteral("from_fld"), QStringLiteral("to_fld"),
    QStringLiteral("subj_fld"), QStringLiteral("date_fld"), QStringLiteral("mailbox"),
    QStringLiteral("mailto"),   QStringLiteral("body_fld"), QStringLiteral("numAttach")};
const QStringList kTagsColumns = {QStringLiteral("id"), QStringLiteral("cat_fld"),
                                  QStringLiteral("key_fld"), QStringLiteral("priority_fld"),
                                  QStringLiteral("notes_fld")};

struct Token {
  enum Kind { Word, String, Number, Symbol, End } kind = End;
  QString text;  // the word, the string's value, the digits or the symbol
  qsizetype start = 0;
};

bool isSpace(QChar c) {
  return c == u' ' || c == u'\t' || c == u'\n' || c == u'\f' || c == u'\r';
}
bool isWordStart(QChar c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_';
}
bool isWordPart(QChar c) {
  return isWordStart(c) || (c >= u'0' && c <= u'9');
}

// Cuts the text into the tokens the builder's statements are made of; nothing for a text
// with anything else (comments, other quotes, other operators, a second statement).
std::optional<QList<Token>> tokens(const QString& text, qsizetype from) {
  QList<Token> out;
  qsizetype i = from;
  const qsizetype n = text.size();
  while (true) {
    while (i < n && isSpace(text[i]))
      ++i;
    if (i == n)
      break;
    Token token;
    token.start = i;
    const QChar c = text[i];
    if (isWordStart(c) || (c >= u'0' && c <= u'9')) {
      while (i < n && isWordPart(text[i]))
        ++i;
      token.text = text.mid(token.start, i - token.start);
      const bool digits = !isWordStart(c);
      if (digits && std::any_of(token.text.begin(), token.text.end(), isWordStart))
        return std::nullopt;
      token.kind = digits ? Token::Number : Token::Word;
    } else if (c == u'"') {
      token.kind = Token::String;
      for (++i;; ++i) {
        if (i == n)
          return std::nullopt;
        if (text[i] == u'"') {
          if (i + 1 < n && text[i + 1] == u'"') {
            token.text += u'"';
            ++i;
            continue;
          }
          ++i;
          break;
        }
        token.text += text[i];
      }
    } else if (c == u'(' || c == u')' || c == u'.' || c == u'=') {
      token.kind = Token::Symbol;
      token.text = c;
      ++i;
    } else if ((c == u'>' || c == u'<') && i + 1 < n && text[i + 1] == u'=') {
      token.kind = Token::Symbol;
      token.text = text.mid(i, 2);
      i += 2;
    } else {
      return std::nullopt;
    }
    out.append(token);
  }
  out.append(Token{Token::End, {}, n});
  return out;
}

// The messages a part of the condition allows: all of them, or those of a query.
struct Candidates {
  bool all = true;
  QString query;
};

// AND (both) narrows to what every narrowing part allows; OR to what any part allows, and so
// not at all when one part narrows nothing.
Candidates combined(const QList<Candidates>& parts, bool both) {
  QStringList queries;
  for (const Candidates& part : parts) {
    if (part.all && !both)
      return {};
    if (!part.all)
      queries.append(part.query);
  }
  if (queries.isEmpty())
    return {};
  if (queries.size() == 1)
    return {false, queries.first()};
  for (QString& query : queries)
    query = QStringLiteral("SELECT * FROM (") + query + QLatin1Char(')');
  return {false, queries.join(both ? QStringLiteral(" INTERSECT ") : QStringLiteral(" UNION "))};
}

Candidates likeCandidates(const QString& column, const QString& pattern,
                          const SearchPrefilter::WordsHolding& wordsHolding) {
  const QString table = archive::IndexFile::tableOf(column);
  const QList<QByteArray> runs = archive::WordTokenizer::likeRuns(pattern);
  QStringList groups;
  for (qsizetype i = 0; i < runs.size() && i < kMostRuns; ++i) {
    const std::optional<QList<QByteArray>> words = wordsHolding(runs.at(i));
    if (!words)
      continue;
    // No word holds the run: no message matches.
    if (words->isEmpty())
      return {false, QStringLiteral("SELECT rowid FROM %1 WHERE 0").arg(table)};
    // Words are made of word characters: no quotes of either kind.
    QStringList terms;
    for (const QByteArray& word : *words)
      terms.append(QLatin1Char('"') + QString::fromUtf8(word) + QLatin1Char('"'));
    groups.append(terms.size() == 1
                      ? terms.first()
                      : QLatin1Char('(') + terms.join(QStringLiteral(" OR ")) + QLatin1Char(')'));
  }
  if (groups.isEmpty())
    return {};
  return {false, QStringLiteral("SELECT rowid FROM %1 WHERE %1 MATCH '%2'")
                     .arg(table, groups.join(QStringLiteral(" AND ")))};
}

// A recursive reading of the condition by SQLite's precedence: OR binds looser than AND.
class Reader {
 public:
  Reader(const QList<Token>& tokens, bool withTags, const QStringList& columnNames, int likeLimit,
         const SearchPrefilter::WordsHolding& wordsHolding)
      : tokens_(tokens),
        withTags_(withTags),
        names_(columnNames),
        likeLimit_(likeLimit),
        wordsHolding_(wordsHolding) {}

  bool keyword(const char* word) {
    if (peek().kind != Token::Word ||
        peek().text.compare(QLatin1String(word), Qt::CaseInsensitive) != 0)
      return false;
    ++at_;
    return true;
  }
  bool symbol(const char* text) {
    if (peek().kind != Token::Symbol || peek().text != QLatin1String(text))
      return false;
    ++at_;
    return true;
  }
  const Token& peek() const { return tokens_.at(at_); }

  std::optional<Candidates> disjunction() {
    QList<Candidates> parts;
    do {
      const std::optional<Candidates> part = conjunction();
      if (!part)
        return std::nullopt;
      parts.append(*part);
    } while (keyword("OR"));
    return combined(parts, false);
  }

 private:
  std::optional<Candidates> conjunction() {
    QList<Candidates> parts;
    do {
      std::optional<Candidates> part;
      if (symbol("(")) {
        part = disjunction();
        if (!symbol(")"))
          return std::nullopt;
      } else {
        part = comparison();
      }
      if (!part)
        return std::nullopt;
      parts.append(*part);
    } while (keyword("AND"));
    return combined(parts, true);
  }

  // A column of the statement's tables, its name in lower case; empty when unknown.
  QString column() {
    if (peek().kind != Token::Word)
      return {};
    QString table;
    QString name = tokens_.at(at_++).text.toLower();
    if (symbol(".")) {
      if (peek().kind != Token::Word)
        return {};
      table = name;
      name = tokens_.at(at_++).text.toLower();
    }
    const bool inEmail = kEmailColumns.contains(name, Qt::CaseInsensitive);
    const bool inTags = withTags_ && kTagsColumns.contains(name, Qt::CaseInsensitive);
    if (table.isEmpty())
      return inEmail != inTags ? name : QString();  // an unknown or ambiguous name
    if ((table == u"email" && inEmail) || (table == u"tags" && inTags))
      return table + QLatin1Char('.') + name;
    return {};
  }

  std::optional<QString> string() {
    if (peek().kind != Token::String)
      return std::nullopt;
    const QString value = tokens_.at(at_++).text;
    // A double-quoted text that names a column is that column, not a text.
    if (names_.contains(value, Qt::CaseInsensitive) ||
        value.compare(u"rowid", Qt::CaseInsensitive) == 0 ||
        value.compare(u"oid", Qt::CaseInsensitive) == 0 ||
        value.compare(u"_rowid_", Qt::CaseInsensitive) == 0)
      return std::nullopt;
    return value;
  }

  std::optional<Candidates> comparison() {
    const QString name = column();
    if (name.isEmpty())
      return std::nullopt;
    if (keyword("LIKE")) {
      const std::optional<QString> pattern = string();
      if (!pattern || pattern->toUtf8().size() > likeLimit_)
        return std::nullopt;
      const QString bare = name.section(QLatin1Char('.'), -1);
      const bool emailColumn = !name.startsWith(u"tags.");
      if (emailColumn && archive::SearchIndex::isIndexedColumn(bare))
        return likeCandidates(bare, *pattern, wordsHolding_);
      return Candidates();
    }
    if (symbol(">=") || symbol("<="))
      return string() ? std::optional<Candidates>(Candidates()) : std::nullopt;
    if (!symbol("="))
      return std::nullopt;
    if (peek().kind == Token::Number) {
      ++at_;
      return Candidates();
    }
    const QString other = column();
    const bool join = (name == u"email.id" && other == u"tags.id") ||
                      (name == u"tags.id" && other == u"email.id");
    return join ? std::optional<Candidates>(Candidates()) : std::nullopt;
  }

  const QList<Token>& tokens_;
  bool withTags_;
  const QStringList& names_;
  int likeLimit_;
  const SearchPrefilter::WordsHolding& wordsHolding_;
  qsizetype at_ = 0;
};

}  // namespace

const QString SearchPrefilter::kSelectEmail = QStringLiteral(
    "SELECT email.id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE "
    "mailbox END),numAttach FROM email ");
const QString SearchPrefilter::kSelectEmailTags = QStringLiteral(
    "SELECT email.id,date_fld,from_fld,to_fld,subj_fld,(CASE WHEN mailbox ISNULL THEN '' ELSE "
    "mailbox END),numAttach FROM email,tags ");

std::optional<SearchPrefilter> SearchPrefilter::read(const QString& statement,
                                                     const QStringList& columnNames, int likeLimit,
                                                     const WordsHolding& wordsHolding) {
  SearchPrefilter prefilter;
  prefilter.withTags = statement.startsWith(kSelectEmailTags);
  if (!prefilter.withTags && !statement.startsWith(kSelectEmail))
    return std::nullopt;
  const qsizetype head = (prefilter.withTags ? kSelectEmailTags : kSelectEmail).size();
  const std::optional<QList<Token>> list = tokens(statement, head);
  if (!list)
    return std::nullopt;
  Reader reader(*list, prefilter.withTags, columnNames, likeLimit, wordsHolding);
  Candidates candidates;
  if (reader.keyword("WHERE")) {
    const qsizetype start = reader.peek().start;
    const std::optional<Candidates> read = reader.disjunction();
    if (!read)
      return std::nullopt;
    candidates = *read;
    prefilter.condition = statement.mid(start, reader.peek().start - start).trimmed();
  }
  if (!reader.keyword("ORDER") || !reader.keyword("BY") || !reader.keyword("UPPER") ||
      !reader.symbol("(") || !reader.keyword("date_fld") || !reader.symbol(")") ||
      reader.peek().kind != Token::End)
    return std::nullopt;
  if (!candidates.all)
    prefilter.candidates = candidates.query;
  return prefilter;
}

}  // namespace quillery::search
