#pragma once

#include <QObject>
#include <memory>

namespace quillery::search {
class Deletion;
class EmailSearch;
class SearchQueryBuilder;
class SqlQuery;
}  // namespace quillery::search

namespace quillery::app {

struct AppContext;

// Binds the search panel, the SQL query panel, browsing and deleting messages from the archive to
// the window: each method is the user action of the same name, called by the controller's slot of
// that name. A method gathers what the user set in the window, hands it to the feature and lets the
// window follow the feature's results.
class SearchBinding : public QObject {
  Q_OBJECT

 public:
  explicit SearchBinding(AppContext& context, QObject* parent = nullptr);
  ~SearchBinding() override;

  void retrieveFromDB();
  void retrieveEmails();
  void browseDatabase();
  void resetRetrieve();
  void resetTagSearch();
  void editSqlString();
  void makeSQLString();
  void showSchema();
  void deleteSelected();
  void deleteAll();
  void deleteAttachments();

 private:
  // The first item of the search panel's category pop-up, which the tag reset selects.
  QString firstCategory() const;

  AppContext& context_;
  std::unique_ptr<search::SearchQueryBuilder> builder_;
  std::unique_ptr<search::EmailSearch> search_;
  std::unique_ptr<search::SqlQuery> sqlQuery_;
  std::unique_ptr<search::Deletion> deletion_;
};

}  // namespace quillery::app
