#include "search/Emailrow.h"

#include <utility>

namespace quillery::search {
namespace {

int order(int a, int b) {
  return a < b ? -1 : (a > b ? 1 : 0);
}
int order(const QString& a, const QString& b, Qt::CaseSensitivity cs) {
  const int c = QString::compare(a, b, cs);
  return c < 0 ? -1 : (c > 0 ? 1 : 0);
}

}  // namespace

Emailrow::Emailrow(int emailID, int emailAtch, QString emailDate, QString emailFrom,
                   QString emailTo, QString emailSubject, QString emailMailbox)
    : emailID_(emailID),
      emailAtch_(emailAtch),
      emailDate_(std::move(emailDate)),
      emailFrom_(std::move(emailFrom)),
      emailTo_(std::move(emailTo)),
      emailSubject_(std::move(emailSubject)),
      emailMailbox_(std::move(emailMailbox)) {}

int Emailrow::emailIDComparison(const Emailrow& o) const {
  return order(emailID_, o.emailID_);
}
int Emailrow::emailAtchComparison(const Emailrow& o) const {
  return order(emailAtch_, o.emailAtch_);
}
int Emailrow::emailDateComparison(const Emailrow& o) const {
  return order(emailDate_, o.emailDate_, Qt::CaseSensitive);
}
int Emailrow::emailFromComparison(const Emailrow& o) const {
  return order(emailFrom_, o.emailFrom_, Qt::CaseInsensitive);
}
int Emailrow::emailToComparison(const Emailrow& o) const {
  return order(emailTo_, o.emailTo_, Qt::CaseInsensitive);
}
int Emailrow::emailSubjectComparison(const Emailrow& o) const {
  return order(emailSubject_, o.emailSubject_, Qt::CaseInsensitive);
}
int Emailrow::emailMailboxComparison(const Emailrow& o) const {
  return order(emailMailbox_, o.emailMailbox_, Qt::CaseInsensitive);
}

}  // namespace quillery::search
