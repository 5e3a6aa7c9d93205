#pragma once

#include <QObject>

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
  AppContext& context_;
};

}  // namespace quillery::app
