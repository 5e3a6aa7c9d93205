#include "archive/CandidateTable.h"

#include <sqlite3.h>

namespace quillery::archive {
namespace {

struct Table : sqlite3_vtab {
  const std::vector<long long>* ids = nullptr;
};

struct Cursor : sqlite3_vtab_cursor {
  const std::vector<long long>* ids = nullptr;
  std::size_t at = 0;
};

int connect(sqlite3* connection, void* aux, int, const char* const*, sqlite3_vtab** out, char**) {
  const int rc = sqlite3_declare_vtab(connection, "CREATE TABLE x(id INTEGER)");
  if (rc != SQLITE_OK)
    return rc;
  auto* table = new Table{};
  table->ids = static_cast<const std::vector<long long>*>(aux);
  *out = table;
  return SQLITE_OK;
}

int disconnect(sqlite3_vtab* table) {
  delete static_cast<Table*>(table);
  return SQLITE_OK;
}

int bestIndex(sqlite3_vtab* table, sqlite3_index_info* info) {
  const double rows = double(static_cast<Table*>(table)->ids->size());
  info->estimatedCost = rows + 1;
  info->estimatedRows = static_cast<sqlite3_int64>(rows) + 1;
  // The ids come in ascending order.
  if (info->nOrderBy == 1 && info->aOrderBy[0].iColumn == 0 && !info->aOrderBy[0].desc)
    info->orderByConsumed = 1;
  return SQLITE_OK;
}

int open(sqlite3_vtab* table, sqlite3_vtab_cursor** out) {
  auto* cursor = new Cursor{};
  cursor->ids = static_cast<Table*>(table)->ids;
  *out = cursor;
  return SQLITE_OK;
}

int close(sqlite3_vtab_cursor* cursor) {
  delete static_cast<Cursor*>(cursor);
  return SQLITE_OK;
}

int filter(sqlite3_vtab_cursor* cursor, int, const char*, int, sqlite3_value**) {
  static_cast<Cursor*>(cursor)->at = 0;
  return SQLITE_OK;
}

int next(sqlite3_vtab_cursor* cursor) {
  ++static_cast<Cursor*>(cursor)->at;
  return SQLITE_OK;
}

int eof(sqlite3_vtab_cursor* base) {
  const auto* cursor = static_cast<Cursor*>(base);
  return cursor->at >= cursor->ids->size() ? 1 : 0;
}

int column(sqlite3_vtab_cursor* base, sqlite3_context* context, int) {
  const auto* cursor = static_cast<Cursor*>(base);
  sqlite3_result_int64(context, (*cursor->ids)[cursor->at]);
  return SQLITE_OK;
}

int rowid(sqlite3_vtab_cursor* base, sqlite3_int64* out) {
  *out = static_cast<sqlite3_int64>(static_cast<Cursor*>(base)->at);
  return SQLITE_OK;
}

sqlite3_module makeModule() {
  sqlite3_module module{};
  // No xCreate: the table exists on every connection that registers it and cannot be made.
  module.xConnect = connect;
  module.xBestIndex = bestIndex;
  module.xDisconnect = disconnect;
  module.xOpen = open;
  module.xClose = close;
  module.xFilter = filter;
  module.xNext = next;
  module.xEof = eof;
  module.xColumn = column;
  module.xRowid = rowid;
  return module;
}

const sqlite3_module kModule = makeModule();

}  // namespace

bool CandidateTable::registerWith(sqlite3* connection, const std::vector<long long>* ids) {
  return sqlite3_create_module_v2(connection, kName, &kModule,
                                  const_cast<std::vector<long long>*>(ids), nullptr) == SQLITE_OK;
}

}  // namespace quillery::archive
