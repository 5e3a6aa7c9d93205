#pragma once

#include <QList>
#include <QObject>
#include <optional>

#include "archive/Records.h"
#include "search/TagValues.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Dialogs;
class Progress;
}  // namespace quillery::platform

namespace quillery::search {

class CategoryList;
class ResultList;

// The tags of listed messages: a category, keywords, a priority and notes, kept in one tags
// row per message. Tags are replaced as a whole, never merged: saving an empty panel removes
// the row. Both work on the connection the list's retrieval left open (reopening the listed
// archive when something closed it).
class Tagging : public QObject {
  Q_OBJECT

 public:
  Tagging(archive::Archive& archive, ResultList& list, CategoryList& categories,
          platform::Dialogs& dialogs, platform::Progress& progress, QObject* parent = nullptr);

  // The tags of the message shown at this table row: empty texts and "None" when it has no
  // tags row (or no row is given, -1). A failing query shows "SQL error: %s" and answers
  // nothing.
  std::optional<TagValues> setTags(int displayRow);

  // Writes the values as the tags of every message shown at these rows, lowest row first, in
  // one transaction, and shows "*" after the dates of the tagged rows. A new category is
  // added to the category list (categoryAdded). A failing DELETE is reported ("SQL error: %s")
  // and the work goes on; a failing INSERT is reported and ends the action at once: no
  // COMMIT is sent and the transaction stays open, so the rows changed so far are not in the
  // file. Line breaks in the texts are not stored. Ends with "Done tagging email". Returns
  // false when it stopped early or had no connection; while a store run holds the
  // connection nothing is written.
  bool addTags(const TagValues& values, const QList<int>& selectedDisplayRows);

  archive::TagRecord tags;

 Q_SIGNALS:
  // A category used for the first time; the two category pop-ups add it at their end.
  void categoryAdded(const QString& category);

 private:
  // Replaces one message's tags row; false when the INSERT failed.
  bool tagOne(int displayRow, const TagValues& escaped, int priority);

  archive::Archive& archive_;
  ResultList& list_;
  CategoryList& categories_;
  platform::Dialogs& dialogs_;
  platform::Progress& progress_;
};

}  // namespace quillery::search
