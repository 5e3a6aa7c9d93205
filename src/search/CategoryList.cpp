#include "search/CategoryList.h"

#include <QFileInfo>
#include <cstdio>

#include "archive/Archive.h"
#include "search/SqlErrorReport.h"

namespace quillery::search {

bool CategoryList::getCategories(const QString& dbPath) {
  // A file that is not there has no categories; opening it would create an empty archive
  // wherever a path was merely named (a new path chosen, the first run's default).
  if (!dbPath.isEmpty() && !QFileInfo::exists(dbPath))
    return true;
  // A running store keeps its transaction on the one connection: reopening would roll it
  // back, so the categories are read where the run stands.
  const bool ownConnection = !archive_.storeRunUnderWay;
  if (ownConnection && !archive_.openForAction(dbPath))
    return false;
  const archive::ExecResult result = archive_.exec(
      QStringLiteral("SELECT DISTINCT cat_fld FROM tags"), categoryListCallback, this);
  if (ownConnection)
    archive_.close();
  // The list is read again on every save of the preferences and saved with them; without
  // this it would grow by the archive's categories each time.
  categoryList.removeDuplicates();
  if (!result.ok()) {
    reportOnStderr(result);
    return false;
  }
  return true;
}

int CategoryList::categoryListCallback(void* context, int columns, char** values, char**) {
  auto* self = static_cast<CategoryList*>(context);
  for (int i = 0; i < columns; ++i) {
    if (values[i] != nullptr && values[i][0] != '\0')
      self->categoryList.append(QString::fromUtf8(values[i]));
  }
  return 0;
}

}  // namespace quillery::search
