#pragma once

#include <QString>

namespace quillery::search {

// One row of the result list. A row never changes after it is made; the list sorts rows with
// the seven comparisons, each answering -1, 0 or 1 as this row orders before, with or after
// the other.
class Emailrow {
 public:
  Emailrow(int emailID, int emailAtch, QString emailDate, QString emailFrom, QString emailTo,
           QString emailSubject, QString emailMailbox);

  int emailID() const { return emailID_; }
  int emailAtch() const { return emailAtch_; }
  // The stored date text, with "*" appended when the message has a tags row.
  const QString& emailDate() const { return emailDate_; }
  const QString& emailFrom() const { return emailFrom_; }
  const QString& emailTo() const { return emailTo_; }
  const QString& emailSubject() const { return emailSubject_; }
  // "" when the archive's mailbox is NULL.
  const QString& emailMailbox() const { return emailMailbox_; }

  int emailIDComparison(const Emailrow& other) const;
  int emailAtchComparison(const Emailrow& other) const;
  // Plain character comparison: the "*" of a tagged message takes part.
  int emailDateComparison(const Emailrow& other) const;
  // The four text comparisons ignore case.
  int emailFromComparison(const Emailrow& other) const;
  int emailToComparison(const Emailrow& other) const;
  int emailSubjectComparison(const Emailrow& other) const;
  int emailMailboxComparison(const Emailrow& other) const;

 private:
  int emailID_;
  int emailAtch_;
  QString emailDate_;
  QString emailFrom_;
  QString emailTo_;
  QString emailSubject_;
  QString emailMailbox_;
};

}  // namespace quillery::search
