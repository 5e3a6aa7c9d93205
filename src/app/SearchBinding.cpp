#include "app/SearchBinding.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QPushButton>

#include "app/AppContext.h"
#include "app/ProgressPanel.h"
#include "app/SearchPanel.h"
#include "app/SqlPanel.h"
#include "app/StorePanel.h"
#include "archive/Archive.h"
#include "prefs/StoredPreferences.h"
#include "search/Deletion.h"
#include "search/EmailSearch.h"
#include "search/SearchForm.h"
#include "search/SearchQueryBuilder.h"
#include "search/SqlQuery.h"

namespace quillery::app {
namespace {

void orderFront(QWidget& window) {
  window.show();
  window.raise();
  window.activateWindow();
}

}  // namespace

SearchBinding::SearchBinding(AppContext& context, QObject* parent)
    : QObject(parent),
      context_(context),
      builder_(std::make_unique<search::SearchQueryBuilder>(context.archive, context.ports.dialogs,
                                                            context.ProgressPanel)),
      search_(std::make_unique<search::EmailSearch>(context.archive, *builder_, context.resultList,
                                                    context.ProgressPanel)),
      sqlQuery_(std::make_unique<search::SqlQuery>(context.archive, *builder_, *search_,
                                                   context.resultList, context.ports.dialogs)),
      deletion_(std::make_unique<search::Deletion>(context.archive, context.resultList,
                                                   context.ports.dialogs, context.ProgressPanel)) {}

SearchBinding::~SearchBinding() = default;

QString SearchBinding::firstCategory() const {
  return context_.retrievePanel.searchCatButton->itemText(0);
}

void SearchBinding::retrieveFromDB() {
  if (search_->busy())
    return;
  context_.retrievePanel.setWindowTitle(QStringLiteral("Search email in ") + context_.prefs.dbPath);
  orderFront(context_.retrievePanel);
  context_.storePanel.viewOrigButton->setEnabled(context_.prefs.origState != 0);
}

void SearchBinding::retrieveEmails() {
  search_->retrieveEmails(context_.retrievePanel.form(), context_.prefs.dbPath);
}

void SearchBinding::browseDatabase() {
  search::SearchForm form = context_.retrievePanel.form();
  search_->browseDatabase(form, context_.prefs.dbPath, firstCategory());
  context_.retrievePanel.setForm(form);
}

void SearchBinding::resetRetrieve() {
  search::SearchForm form = context_.retrievePanel.form();
  form.resetRetrieve();
  context_.retrievePanel.setForm(form);
}

void SearchBinding::resetTagSearch() {
  search::SearchForm form = context_.retrievePanel.form();
  form.resetTagSearch(firstCategory());
  context_.retrievePanel.setForm(form);
}

void SearchBinding::editSqlString() {
  const auto text = sqlQuery_->editSqlString(context_.retrievePanel.form(), context_.prefs.dbPath);
  if (!text)
    return;
  context_.SQLPanel.beginSqlTextField->setPlainText(text->beginSql);
  context_.SQLPanel.whereTextField->setPlainText(text->where);
  orderFront(context_.SQLPanel);
}

void SearchBinding::makeSQLString() {
  sqlQuery_->makeSQLString(context_.SQLPanel.whereTextField->toPlainText(), context_.prefs.dbPath);
}

void SearchBinding::showSchema() {
  sqlQuery_->showSchema();
}

void SearchBinding::deleteSelected() {
  deletion_->deleteSelected(context_.storePanel.selectedDisplayRows());
}

void SearchBinding::deleteAll() {
  deletion_->deleteAll();
}

void SearchBinding::deleteAttachments() {
  deletion_->deleteAttachments(context_.storePanel.selectedDisplayRows());
}

}  // namespace quillery::app
