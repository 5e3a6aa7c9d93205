#include "search/EmailSearch.h"

#include "archive/Archive.h"
#include "platform/Progress.h"
#include "search/ResultList.h"
#include "search/SearchQueryBuilder.h"

namespace quillery::search {

using RunControls = platform::Progress::RunControls;

EmailSearch::EmailSearch(archive::Archive& archive, SearchQueryBuilder& builder, ResultList& list,
                         platform::Progress& progress)
    : archive_(archive), builder_(builder), list_(list), progress_(progress), indexed_(archive) {}

bool EmailSearch::busy() const {
  return archive_.idCount != 0 || archive_.storeRunUnderWay;
}

bool EmailSearch::retrieveEmails(const SearchForm& form, const QString& dbPath) {
  if (busy())
    return false;
  // The count alone: a retrieval can't be cancelled.
  progress_.showCount(QStringLiteral("0"));
  progress_.setRunControlsVisible(false, RunControls::All);
  progress_.setRunControlsVisible(true, RunControls::Count);
  builder_.makeSearchSQL(form, dbPath);
  if (archive_.openFailed) {
    archive_.openFailed = false;
    return false;
  }
  archive::SearchIndex& index = archive_.searchIndex();
  if (index.needsBuilding()) {
    indexingCancelled_ = false;
    progress_.offerStop([this] { cancelIndexing(); });
    index.build(progress_, [this] { return indexingCancelled_; });
    progress_.offerStop({});
  }
  archive_.sqlText = builder_.statement();
  list_.onlyAttachCheck = form.onlyAttachCheck;
  list_.retrieve(dbPath, &indexed_);
  return true;
}

bool EmailSearch::browseDatabase(SearchForm& form, const QString& dbPath,
                                 const QString& firstCategory) {
  form.resetRetrieve();
  form.resetTagSearch(firstCategory);
  return retrieveEmails(form, dbPath);
}

}  // namespace quillery::search
