#pragma once

#include <QStringList>

namespace quillery::archive {
class Archive;
}

namespace quillery::search {

// The known tag categories, in the order the two category pop-ups show them: those stored
// with the preferences and those the archive's tags rows use.
class CategoryList {
 public:
  explicit CategoryList(archive::Archive& archive) : archive_(archive) {}

  // Opens the archive at dbPath, adds the distinct non-empty categories of its tags rows to
  // categoryList and closes the connection again. Entries already in the list stay where they
  // are and are not added twice. While a store run holds the connection the query runs on it
  // and it stays open (the run's path is the one read). A path naming no file has no categories:
  // the list stays as it is and no file is created. Returns true when the pop-ups are to show the
  // whole list. When the archive does not open, openDB has shown its alert; the flag is cleared and
  // false returned. A failing query is written as "SQL error: %s\n" to standard error and also
  // returns false, leaving the pop-ups as they are.
  bool getCategories(const QString& dbPath);

  // Row callback of "SELECT DISTINCT cat_fld FROM tags"; context: CategoryList*. Appends
  // every non-empty column text to categoryList.
  static int categoryListCallback(void* context, int columns, char** values, char** names);

  QStringList categoryList;

 private:
  archive::Archive& archive_;
};

}  // namespace quillery::search
