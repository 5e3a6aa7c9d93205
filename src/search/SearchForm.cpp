#include "search/SearchForm.h"

namespace quillery::search {

void SearchForm::resetRetrieve() {
  const SearchForm neutral;
  for (QString* title : {&beginMo, &beginDa, &beginYr, &endMo, &endDa, &endYr})
    *title = QStringLiteral("All");
  fromAndButton = neutral.fromAndButton;
  toAndButton = neutral.toAndButton;
  subjAndButton = neutral.subjAndButton;
  mailboxAndButton = neutral.mailboxAndButton;
  keyWords = {};
  onlyAttachCheck = false;
}

void SearchForm::resetTagSearch(const QString& firstCategory) {
  catAndButton = keywordsAndButton = priorityAndButton = QStringLiteral("AND");
  searchPriorityButton = QStringLiteral("None");
  priorityCheck = false;
  searchCatButton = firstCategory;
  tagWords = {};
}

}  // namespace quillery::search
