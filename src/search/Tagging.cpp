#include "search/Tagging.h"

#include <cstdio>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/CategoryList.h"
#include "search/Priorities.h"
#include "search/ResultList.h"
#include "search/SqlErrorReport.h"
#include "text/LeadingInt.h"
#include "text/SqlEscape.h"

namespace quillery::search {
namespace {

QString escaped(QString text) {
  text::SqlEscape::escapeSqlText(text);
  return text;
}

}  // namespace

Tagging::Tagging(archive::Archive& archive, ResultList& list, CategoryList& categories,
                 platform::Dialogs& dialogs, platform::Progress& progress, QObject* parent)
    : QObject(parent),
      archive_(archive),
      list_(list),
      categories_(categories),
      dialogs_(dialogs),
      progress_(progress) {}

std::optional<TagValues> Tagging::setTags(int displayRow) {
  tags.clearTags();
  if (displayRow < 0 || displayRow >= list_.emailRows.size())
    return TagValues{};
  if (!list_.reopenListedArchive())
    return std::nullopt;
  const int id = list_.rowAt(displayRow).emailID();
  const archive::ExecResult result = archive_.exec(
      QStringLiteral("SELECT cat_fld,key_fld,priority_fld,notes_fld FROM tags WHERE id=%1").arg(id),
      archive::tagRecordCallback, &tags);
  if (!result.ok()) {
    dialogs_.critical(QString(), QStringLiteral("SQL error: ") + result.error);
    return std::nullopt;
  }
  // A number beyond the pop-up's items selects its first.
  const QString priority =
      priorityTitles().value(text::leadingInt(tags.tagPriority), priorityTitles().first());
  return TagValues{tags.tagCategory, tags.tagKeywords, tags.tagNotes, priority};
}

bool Tagging::addTags(const TagValues& values, const QList<int>& selectedDisplayRows) {
  // A store run's transaction holds the connection: this action's COMMIT would end it.
  if (archive_.storeRunUnderWay || !list_.reopenListedArchive())
    return false;
  if (!values.category.isEmpty() && !categories_.categoryList.contains(values.category)) {
    categories_.categoryList.append(values.category);
    Q_EMIT categoryAdded(values.category);
  }
  const int priority = tagPriorityNumber(values.priority);
  const TagValues escapedValues{escaped(values.category), escaped(values.keywords),
                                escaped(values.notes), values.priority};
  // The count alone: tagging runs to its end without a chance to cancel.
  progress_.showCount(QStringLiteral("0"));
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::All);
  progress_.setRunControlsVisible(true, platform::Progress::RunControls::Count);
  progress_.open(QStringLiteral("Add tags to email..."));
  reportOnStderr(archive_.exec(QStringLiteral("BEGIN TRANSACTION")));
  int done = 0;
  for (const int row : selectedDisplayRows) {
    if (row < 0 || row >= list_.emailRows.size())
      continue;
    if (!tagOne(row, escapedValues, priority))
      return false;
    progress_.doProgressCount(++done, 10);
  }
  reportOnStderr(archive_.exec(QStringLiteral("COMMIT TRANSACTION")));
  Q_EMIT list_.fontReapplied();
  Q_EMIT list_.rowsReplaced();
  progress_.close();
  dialogs_.inform(QStringLiteral("Done tagging email"),
                  QStringLiteral("%1 emails have been tagged.").arg(selectedDisplayRows.size()));
  return true;
}

bool Tagging::tagOne(int displayRow, const TagValues& escapedValues, int priority) {
  const int index = list_.arrayIndex(displayRow);
  const Emailrow& old = list_.emailRows.at(index);
  const int id = old.emailID();
  QString date = old.emailDate();
  date.remove(QLatin1Char('*'));
  archive_.deleteMessageRows(
      id, {archive::MessageTable::Tags}, [this](const archive::ExecResult& failed) {
        dialogs_.critical(QString(), QStringLiteral("SQL error: ") + failed.error);
        return true;
      });
  const bool untagged = escapedValues.category.isEmpty() && escapedValues.keywords.isEmpty() &&
                        escapedValues.notes.isEmpty() && priority == 0;
  if (!untagged) {
    QString insert =
        QStringLiteral("INSERT INTO tags (id,cat_fld,key_fld,priority_fld,notes_fld) VALUES(") +
        QString::number(id) + QStringLiteral(",\"") + escapedValues.category +
        QStringLiteral("\",\"") + escapedValues.keywords + QStringLiteral("\",") +
        QString::number(priority) + QStringLiteral(",\"") + escapedValues.notes +
        QStringLiteral("\")");
    text::SqlEscape::removeNewlines(insert);
    const archive::ExecResult result = archive_.exec(insert);
    if (!result.ok()) {
      dialogs_.critical(QString(), QStringLiteral("SQL error: ") + result.error);
      return false;
    }
    date += QLatin1Char('*');
  }
  list_.replaceRow(index, Emailrow(id, old.emailAtch(), date, old.emailFrom(), old.emailTo(),
                                   old.emailSubject(), old.emailMailbox()));
  return true;
}

}  // namespace quillery::search
