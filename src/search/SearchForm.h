#pragma once

#include <QString>
#include <array>

namespace quillery::search {

// What the search panel holds, as plain values: the titles its pop-ups show, the texts of its
// cells and the states of its check boxes. A new form stands as the two reset actions leave
// the panel, so that a form that names only a few fields searches on those fields alone.
struct SearchForm {
  // The cells of keyWords, in panel order.
  enum KeyWord { From, To, Subject, Mailbox, Body, AttachmentName };
  // The cells of tagWords.
  enum TagWord { Keywords, Notes };

  // The date range: "All" or a number as the dates are written ("03", "2005").
  QString beginMo = QStringLiteral("All");
  QString beginDa = QStringLiteral("All");
  QString beginYr = QStringLiteral("All");
  QString endMo = QStringLiteral("All");
  QString endDa = QStringLiteral("All");
  QString endYr = QStringLiteral("All");
  std::array<QString, 6> keyWords;
  // "AND" or "OR", each standing before the field that follows it in the panel: before to,
  // subject, mailbox and body.
  QString fromAndButton = QStringLiteral("OR");
  QString toAndButton = QStringLiteral("OR");
  QString subjAndButton = QStringLiteral("AND");
  QString mailboxAndButton = QStringLiteral("AND");
  bool onlyAttachCheck = false;

  // The category to search for; "None" means no category condition.
  QString searchCatButton = QStringLiteral("None");
  std::array<QString, 2> tagWords;
  // Before keywords, before notes and before priority.
  QString catAndButton = QStringLiteral("AND");
  QString keywordsAndButton = QStringLiteral("AND");
  QString priorityAndButton = QStringLiteral("AND");
  bool priorityCheck = false;
  // "None", "Highest", "High", "Medium", "Low" or "Lowest".
  QString searchPriorityButton = QStringLiteral("None");

  // The message part back to neutral: dates "All", connectors OR, OR, AND, AND (the differing
  // defaults are deliberate), empty cells, no attachment restriction.
  void resetRetrieve();
  // The tag part back to neutral: connectors AND, priority "None" and off, the category pop-up
  // on its first item (firstCategory) and empty cells.
  void resetTagSearch(const QString& firstCategory = QStringLiteral("None"));
};

}  // namespace quillery::search
