#include "search/SqlQuery.h"

#include "archive/Archive.h"
#include "platform/Dialogs.h"
#include "search/EmailSearch.h"
#include "search/ResultList.h"
#include "search/SearchQueryBuilder.h"

namespace quillery::search {

// A simplified view for users writing conditions: it leaves out type_fld and calls orig_fld
// VARCHAR although the table declares it BLOB. It is shown as written.
const char* const SqlQuery::kSchemaText =
    "email table\n\tid\t\tINT\n\tfrom_fld\tVARCHAR\n\tto_fld\tVARCHAR\n\tsubj_fld\tVARCHAR\n"
    "\tdate_fld\tDATETIME\n\tmailbox\tVARCHAR\n\tmailto\tVARCHAR\n\tbody_fld\tMEDIUMTEXT\n"
    "\tnumAttach\tINT\n\nattachments table\n\tid\t\t\tINT\n\tfilename_fld\tVARCHAR\n"
    "\tencode_fld\tINT\n\tattach_fld\t\tBLOB\n\norigemail table\n\tid\t\tINT\n"
    "\torig_fld\tVARCHAR\n\ntags table\n\tid\t\t\tINT\n\tcat_fld\t\tVARCHAR\n"
    "\tkey_fld\t\tVARCHAR\n\tpriority_fld\tINT\n\tnotes_fld\t\tBLOB\n";

SqlQuery::SqlQuery(archive::Archive& archive, SearchQueryBuilder& builder, EmailSearch& search,
                   ResultList& list, platform::Dialogs& dialogs)
    : archive_(archive), builder_(builder), search_(search), list_(list), dialogs_(dialogs) {}

std::optional<SqlQuery::PanelText> SqlQuery::editSqlString(const SearchForm& form,
                                                           const QString& dbPath) {
  if (search_.busy())
    return std::nullopt;
  builder_.makeSearchSQL(form, dbPath);
  if (archive_.openFailed) {
    archive_.openFailed = false;
    return std::nullopt;
  }
  archive_.sqlText = builder_.searchViewSQL + QStringLiteral("\n\n") + builder_.searchSelectSQL;
  return PanelText{archive_.sqlText, builder_.searchWhereSQL};
}

bool SqlQuery::makeSQLString(const QString& whereText, const QString& dbPath) {
  if (search_.busy())
    return false;
  builder_.searchWhereSQL = whereText;
  if (!reopenForStatement(dbPath))
    return false;
  archive_.sqlText = builder_.statement();
  list_.retrieve(dbPath);
  return true;
}

bool SqlQuery::reopenForStatement(const QString& dbPath) {
  if (archive_.isOpen())
    return true;
  if (!archive_.openForAction(dbPath))
    return false;
  // The view lived on the connection that closed; the statement head still names it.
  if (!builder_.searchViewSQL.isEmpty()) {
    const archive::ExecResult result = archive_.exec(builder_.searchViewSQL);
    if (!result.ok()) {
      dialogs_.critical(QString(), QStringLiteral("SQL error: ") + result.error);
      return false;
    }
  }
  return true;
}

void SqlQuery::showSchema() {
  dialogs_.inform(QStringLiteral("Database Schema"), QString::fromLatin1(kSchemaText));
}

}  // namespace quillery::search
