#include "archive/PreparedStatement.h"

#include <sqlite3.h>

namespace quillery::archive {

PreparedStatement::PreparedStatement(sqlite3* connection, const QString& sql) {
  const QByteArray utf8 = sql.toUtf8();
  error_ = sqlite3_prepare_v2(connection, utf8.constData(), int(utf8.size()), &statement_, nullptr);
  if (error_ != SQLITE_OK) {
    sqlite3_finalize(statement_);
    statement_ = nullptr;
  }
}

PreparedStatement::~PreparedStatement() {
  sqlite3_finalize(statement_);
}

void PreparedStatement::bind(int index, long long value) {
  if (statement_ != nullptr)
    sqlite3_bind_int64(statement_, index, value);
}

void PreparedStatement::bind(int index, const QByteArray& utf8) {
  if (statement_ != nullptr)
    sqlite3_bind_text(statement_, index, utf8.constData(), int(utf8.size()), SQLITE_TRANSIENT);
}

void PreparedStatement::bindView(int index, QByteArrayView utf8) {
  if (statement_ != nullptr)
    sqlite3_bind_text(statement_, index, utf8.data() ? utf8.data() : "", int(utf8.size()),
                      SQLITE_STATIC);
}

bool PreparedStatement::step() {
  if (statement_ == nullptr)
    return false;
  const int code = sqlite3_step(statement_);
  if (code == SQLITE_ROW)
    return true;
  error_ = code == SQLITE_DONE ? SQLITE_OK : code;
  return false;
}

void PreparedStatement::reset() {
  if (statement_ != nullptr)
    sqlite3_reset(statement_);
  error_ = SQLITE_OK;
}

long long PreparedStatement::integer(int column) const {
  return sqlite3_column_int64(statement_, column);
}

bool PreparedStatement::isNull(int column) const {
  return sqlite3_column_type(statement_, column) == SQLITE_NULL;
}

QByteArray PreparedStatement::bytes(int column) const {
  return view(column).toByteArray();
}

QByteArrayView PreparedStatement::view(int column) const {
  const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, column));
  return text ? QByteArrayView(text, sqlite3_column_bytes(statement_, column)) : QByteArrayView();
}

}  // namespace quillery::archive
