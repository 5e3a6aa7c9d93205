#pragma once

#include <QString>

#include "search/IndexedSearch.h"
#include "search/SearchForm.h"

namespace quillery::archive {
class Archive;
}
namespace quillery::platform {
class Progress;
}

namespace quillery::search {

class ResultList;
class SearchQueryBuilder;

// The search panel's actions: a search lists the messages that the panel's fields describe,
// in date order; browsing clears the panel and lists the whole archive.
class EmailSearch {
 public:
  EmailSearch(archive::Archive& archive, SearchQueryBuilder& builder, ResultList& list,
              platform::Progress& progress);

  // True while the archive's connection is spoken for: a conversion or merge working through
  // its id list (idCount is not 0), or a store run holding its transaction open (reopening
  // the archive would roll back what it stored). The search actions do nothing then.
  bool busy() const;

  // Builds the statement from the form (reopening the archive at dbPath) and lists what it
  // finds, leaving out messages without attachments when the form says so. When the archive
  // does not open, its alert has been shown and the list stays as it was; openFailed is
  // cleared again. A statement that fails shows "SQL Error: %s" and empties the list. Returns
  // false when nothing was run (busy, or the archive did not open). The archive's search
  // index is brought up to date first when it needs it ("Indexing..." on the progress panel
  // when that takes a while; cancelIndexing stops it and the search runs without what is not
  // yet indexed), and the statement runs through it.
  bool retrieveEmails(const SearchForm& form, const QString& dbPath);
  // Resets both parts of the form (the category on firstCategory) and lists the whole
  // archive with it; the caller shows the cleared form.
  bool browseDatabase(SearchForm& form, const QString& dbPath,
                      const QString& firstCategory = QStringLiteral("None"));
  // Asks the indexing under way to stop after its current batch.
  void cancelIndexing() { indexingCancelled_ = true; }

 private:
  archive::Archive& archive_;
  SearchQueryBuilder& builder_;
  ResultList& list_;
  platform::Progress& progress_;
  IndexedSearch indexed_;
  bool indexingCancelled_ = false;
};

}  // namespace quillery::search
