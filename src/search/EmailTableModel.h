#pragma once

#include <QAbstractTableModel>
#include <QStringList>

namespace quillery::search {

class ResultList;

// The result list as a table for the window: one row per listed message in display order
// (reversed while the list's sortDescending is set), one column per identifier given, each
// showing the Emailrow value of that name. The header's display text is a title for the
// identifier; Qt::UserRole on the header answers the identifier itself. The model resets
// whenever the list does; it never changes the list. Identifiers that name no Emailrow value
// are left out.
class EmailTableModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  explicit EmailTableModel(ResultList& list, QStringList columnIdentifiers,
                           QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  QVariant headerData(int section, Qt::Orientation orientation,
                      int role = Qt::DisplayRole) const override;

  const QStringList& columnIdentifiers() const { return identifiers_; }
  // The column showing this identifier, or -1.
  int columnOf(const QString& identifier) const { return identifiers_.indexOf(identifier); }

 private:
  ResultList& list_;
  QStringList identifiers_;
  bool resetting_ = false;  // between the list's listAboutToReset and listReset
};

}  // namespace quillery::search
