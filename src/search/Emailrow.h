#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>
#include <QtGlobal>

namespace quillery::search {

// One row of the result list. A row never changes after it is made; the list sorts rows with
// the seven comparisons, each answering -1, 0 or 1 as this row orders before, with or after
// the other. The five texts are kept together as UTF-8 in one block (a list of a million rows
// stays small) and read out as they went in.
class Emailrow {
 public:
  Emailrow(int emailID, int emailAtch, const QString& emailDate, const QString& emailFrom,
           const QString& emailTo, const QString& emailSubject, const QString& emailMailbox);
  // A row from the columns of a list statement as SQLite hands them over (UTF-8, NULL read as
  // ""), the date followed by "*" when the message is tagged.
  static Emailrow fromColumns(int emailID, int emailAtch, const char* date, bool tagged,
                              const char* from, const char* to, const char* subject,
                              const char* mailbox);

  int emailID() const { return emailID_; }
  int emailAtch() const { return emailAtch_; }
  // The stored date text, with "*" appended when the message has a tags row.
  QString emailDate() const { return text(Date); }
  QString emailFrom() const { return text(From); }
  QString emailTo() const { return text(To); }
  QString emailSubject() const { return text(Subject); }
  // "" when the archive's mailbox is NULL.
  QString emailMailbox() const { return text(Mailbox); }

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
  enum Field { Date, From, To, Subject, Mailbox };
  Emailrow(int emailID, int emailAtch) : emailID_(emailID), emailAtch_(emailAtch) {}
  QByteArrayView bytes(Field field) const;
  QString text(Field field) const { return QString::fromUtf8(bytes(field)); }
  int compareTexts(const Emailrow& other, Field field, Qt::CaseSensitivity cs) const;

  int emailID_;
  int emailAtch_;
  // The five texts in field order, each after its length in bytes (LEB128).
  QByteArray texts_;
};

}  // namespace quillery::search

Q_DECLARE_TYPEINFO(quillery::search::Emailrow, Q_RELOCATABLE_TYPE);
