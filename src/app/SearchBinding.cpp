#include "app/SearchBinding.h"

#include "app/AppContext.h"

namespace quillery::app {

SearchBinding::SearchBinding(AppContext& context, QObject* parent)
    : QObject(parent), context_(context) {}

void SearchBinding::retrieveFromDB() {
  context_.notYetAvailable("retrieveFromDB");
}

void SearchBinding::retrieveEmails() {
  context_.notYetAvailable("retrieveEmails");
}

void SearchBinding::browseDatabase() {
  context_.notYetAvailable("browseDatabase");
}

void SearchBinding::resetRetrieve() {
  context_.notYetAvailable("resetRetrieve");
}

void SearchBinding::resetTagSearch() {
  context_.notYetAvailable("resetTagSearch");
}

void SearchBinding::editSqlString() {
  context_.notYetAvailable("editSqlString");
}

void SearchBinding::makeSQLString() {
  context_.notYetAvailable("makeSQLString");
}

void SearchBinding::showSchema() {
  context_.notYetAvailable("showSchema");
}

void SearchBinding::deleteSelected() {
  context_.notYetAvailable("deleteSelected");
}

void SearchBinding::deleteAll() {
  context_.notYetAvailable("deleteAll");
}

void SearchBinding::deleteAttachments() {
  context_.notYetAvailable("deleteAttachments");
}

}  // namespace quillery::app
