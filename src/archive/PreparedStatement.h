#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

struct sqlite3;
struct sqlite3_stmt;

namespace quillery::archive {

// One compiled statement of the search index's own work (building it, reading its state),
// which runs the same statement many times with values bound to it. The statements that the
// user's actions run go through Archive::exec as text. A statement that fails to compile is
// not ok(); step() then answers false at once.
class PreparedStatement {
 public:
  PreparedStatement(sqlite3* connection, const QString& sql);
  ~PreparedStatement();
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;

  bool ok() const { return statement_ != nullptr; }
  // Binds the 1-based parameter; texts and byte arrays are copied, except by bindView, whose
  // bytes must stay until the statement has run.
  void bind(int index, long long value);
  void bind(int index, const QByteArray& utf8);
  void bindView(int index, QByteArrayView utf8);
  // The next row: true while there is one. At the end, or on an error, false; error()
  // then tells which (0 at the end).
  bool step();
  // Rewinds for another run, keeping the bound values.
  void reset();
  int error() const { return error_; }

  long long integer(int column) const;
  bool isNull(int column) const;
  // The column's bytes as SQLite's text of it (UTF-8), empty for NULL; the view lasts until
  // the next step or reset.
  QByteArray bytes(int column) const;
  QByteArrayView view(int column) const;

 private:
  sqlite3_stmt* statement_ = nullptr;
  int error_ = 0;
};

}  // namespace quillery::archive
