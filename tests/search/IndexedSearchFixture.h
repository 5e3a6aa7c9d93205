#pragma once

#include <ostream>

#include "SearchFixture.h"
#include "search/IndexedSearch.h"

namespace quillery::search {

// What a search listed: the ids in display order and the alerts it showed.
struct Listing {
  QList<int> ids;  // in display order
  QStringList alerts;
  bool operator==(const Listing&) const = default;
  friend void PrintTo(const Listing& listing, std::ostream* out) {
    *out << "ids";
    for (const int id : listing.ids)
      *out << ' ' << id;
    *out << ", alerts: " << listing.alerts.join(QStringLiteral(" / ")).toStdString();
  }
};

// Searches run through the search index and as the plain statement, on the fixture's archive.
class IndexedSearchFixture : public SearchFixture {
 protected:
  Listing listed() {
    Listing out;
    for (int row = 0; row < list.emailRows.size(); ++row)
      out.ids.append(list.rowAt(row).emailID());
    out.alerts = dialogs.messages();
    dialogs.alerts.clear();
    return out;
  }
  // The statement as it stands, listed without the index.
  Listing plain(const SearchForm& f) {
    builder.makeSearchSQL(f, dbPath);
    archive.openFailed = false;
    archive.sqlText = builder.statement();
    list.onlyAttachCheck = f.onlyAttachCheck;
    list.retrieve(dbPath);
    return listed();
  }
  Listing indexed(const SearchForm& f) {
    search.retrieveEmails(f, dbPath);
    return listed();
  }
  // Whether the index narrows the statement of the form (rather than leaving it as it is).
  bool narrowed(const SearchForm& f) {
    builder.makeSearchSQL(f, dbPath);
    IndexedSearch through(archive);
    archive.exec(QStringLiteral("BEGIN"));
    const QString run = through.statementFor(builder.statement());
    archive.exec(QStringLiteral("COMMIT"));
    dialogs.alerts.clear();
    return run != builder.statement();
  }

  // A search in the message text: through the index, which must serve it and list what the
  // plain statement lists. The ids found.
  QList<int> find(const QString& text) {
    SearchForm f;
    f.keyWords[SearchForm::Body] = text;
    // The search first: it brings the index up to date.
    dialogs.alerts.clear();
    const Listing got = indexed(f);
    EXPECT_TRUE(narrowed(f)) << text.toStdString();
    EXPECT_EQ(got, plain(f)) << text.toStdString();
    return got.ids;
  }
};

}  // namespace quillery::search
