#pragma once

#include <QDir>

#include "ResultListFixture.h"
#include "search/AttachmentOpener.h"
#include "search/CategoryList.h"
#include "search/Deletion.h"
#include "search/EmailSearch.h"
#include "search/MessageView.h"
#include "search/SearchQueryBuilder.h"
#include "search/SqlQuery.h"
#include "search/Tagging.h"
#include "support/FakeDesktop.h"

namespace quillery::search {

// Every feature of the search subsystem over one real archive file, with fake ports.
class SearchFixture : public ResultListFixture {
 protected:
  void SetUp() override {
    ResultListFixture::SetUp();
    ASSERT_TRUE(QDir().mkpath(tempDir()));
    view.setTempDir(tempDir());
  }
  QString tempDir() const { return dir.filePath(QStringLiteral("quillery_run")); }
  // An attachments row of message id.
  void attach(int id, const QString& name, const QString& data, int encoded = 1) {
    const archive::ExecResult r = archive.exec(
        QStringLiteral("INSERT INTO attachments VALUES(%1,'application/octet-stream','%2',%3,'%4')")
            .arg(id)
            .arg(name)
            .arg(encoded)
            .arg(data));
    EXPECT_TRUE(r.ok()) << r.error.toStdString();
  }
  // The whole file's rows of a table, as another program reads them.
  QStringList table(const char* name) const {
    return test::rowsOf(dbPath, QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(name));
  }
  SearchForm form;
  SearchQueryBuilder builder{archive, dialogs, progress};
  EmailSearch search{archive, builder, list, progress};
  SqlQuery sqlQuery{archive, builder, search, list, dialogs};
  CategoryList categories{archive};
  Tagging tagging{archive, list, categories, dialogs, progress};
  Deletion deletion{archive, list, dialogs, progress};
  test::FakeWorkspace workspace;
  test::FakePasteboard pasteboard;
  MessageView view{archive, list, dialogs, workspace, pasteboard};
  AttachmentOpener opener{archive, dialogs, progress, files, workspace, dir.path()};
};

}  // namespace quillery::search
