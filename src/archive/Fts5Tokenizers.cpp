#include "archive/Fts5Tokenizers.h"

namespace quillery::archive {

bool registerFts5Tokenizer(sqlite3* connection, const char* name, void* context,
                           fts5_tokenizer* tokenizer) {
  fts5_api* api = nullptr;
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(connection, "SELECT fts5(?1)", -1, &statement, nullptr) != SQLITE_OK)
    return false;
  sqlite3_bind_pointer(statement, 1, static_cast<void*>(&api), "fts5_api_ptr", nullptr);
  sqlite3_step(statement);
  sqlite3_finalize(statement);
  if (api == nullptr || api->iVersion < 2)
    return false;
  return api->xCreateTokenizer(api, name, context, tokenizer, nullptr) == SQLITE_OK;
}

}  // namespace quillery::archive
