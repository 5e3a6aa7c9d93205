#include "search/EmailTableModel.h"

#include "search/ResultList.h"

namespace quillery::search {
namespace {

QString titleFor(const QString& identifier) {
  static constexpr struct {
    const char* identifier;
    const char* title;
  } kTitles[] = {
      {"emailID", "ID"},           {"emailAtch", "Attachments"},
      {"emailDate", "Date"},       {"emailFrom", "From"},
      {"emailTo", "To"},           {"emailSubject", "Subject"},
      {"emailMailbox", "Mailbox"},
  };
  for (const auto& entry : kTitles) {
    if (identifier == QLatin1String(entry.identifier))
      return QString::fromLatin1(entry.title);
  }
  return identifier;
}

QVariant valueOf(const Emailrow& row, const QString& identifier) {
  if (identifier == QLatin1String("emailID"))
    return row.emailID();
  if (identifier == QLatin1String("emailAtch"))
    return row.emailAtch();
  if (identifier == QLatin1String("emailDate"))
    return row.emailDate();
  if (identifier == QLatin1String("emailFrom"))
    return row.emailFrom();
  if (identifier == QLatin1String("emailTo"))
    return row.emailTo();
  if (identifier == QLatin1String("emailSubject"))
    return row.emailSubject();
  if (identifier == QLatin1String("emailMailbox"))
    return row.emailMailbox();
  return {};
}

}  // namespace

EmailTableModel::EmailTableModel(ResultList& list, QStringList columnIdentifiers, QObject* parent)
    : QAbstractTableModel(parent), list_(list), identifiers_(std::move(columnIdentifiers)) {
  // An identifier that names no Emailrow value would show nothing and sort nothing.
  identifiers_.removeIf(
      [](const QString& id) { return !ResultList::kColumnIdentifiers.contains(id); });
  connect(&list_, &ResultList::listAboutToReset, this, [this] {
    if (!resetting_) {
      resetting_ = true;
      beginResetModel();
    }
  });
  connect(&list_, &ResultList::rowsReplaced, this, [this] {
    if (rowCount() > 0 && columnCount() > 0)
      Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1), {Qt::DisplayRole});
  });
  connect(&list_, &ResultList::listReset, this, [this] {
    if (!resetting_)
      beginResetModel();
    resetting_ = false;
    endResetModel();
  });
}

int EmailTableModel::rowCount(const QModelIndex& parent) const {
  if (parent.isValid())
    return 0;
  // While a store run reads messages, listCount counts them ahead of any row; only rows
  // that exist are shown.
  return int(std::min<qsizetype>(list_.listCount, list_.emailRows.size()));
}

int EmailTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : int(identifiers_.size());
}

QVariant EmailTableModel::data(const QModelIndex& index, int role) const {
  if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
    return {};
  if (role != Qt::DisplayRole)
    return {};
  return valueOf(list_.rowAt(index.row()), identifiers_.at(index.column()));
}

QVariant EmailTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= identifiers_.size())
    return {};
  if (role == Qt::DisplayRole)
    return titleFor(identifiers_.at(section));
  if (role == Qt::UserRole)
    return identifiers_.at(section);
  return {};
}

}  // namespace quillery::search
