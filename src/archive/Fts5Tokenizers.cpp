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

QByteArray documentTokens(const fts5_tokenizer& tokenizer, void* context, QByteArrayView text) {
  Fts5Tokenizer* instance = nullptr;
  QByteArray tokens;
  if (tokenizer.xCreate(context, nullptr, 0, &instance) != SQLITE_OK)
    return tokens;
  const auto take = [](void* out, int, const char* token, int size, int, int) {
    static_cast<QByteArray*>(out)->append(token, size).append('\n');
    return SQLITE_OK;
  };
  tokenizer.xTokenize(instance, &tokens, FTS5_TOKENIZE_DOCUMENT, text.data(), int(text.size()),
                      take);
  tokenizer.xDelete(instance);
  return tokens;
}

}  // namespace quillery::archive
