#include "ingest/StoreRequest.h"

#include "ingest/StorePaths.h"

namespace quillery::ingest {

namespace {

const QString kAll = QStringLiteral("All");

QString zeroOne(bool on) {
  return on ? QStringLiteral("1") : QStringLiteral("0");
}

QString dateText(const StoreDate& date, const QString& allMonthDay, const QString& allYear) {
  const QString year = date.year == kAll ? allYear : date.year;
  const QString month = date.month == kAll ? allMonthDay : date.month;
  const QString day = date.day == kAll ? allMonthDay : date.day;
  return QStringLiteral("%1-%2-%3 00:00:00").arg(year, month, day);
}

}  // namespace

QString StoreRequest::beginDateText(const StoreDate& date) {
  return dateText(date, QStringLiteral("00"), QStringLiteral("0000"));
}

QString StoreRequest::endDateText(const StoreDate& date) {
  return dateText(date, QStringLiteral("99"), QStringLiteral("9999"));
}

QStringList StoreRequest::toolArguments() const {
  QStringList arguments{StorePaths::forArchive(dbPath).runLog,
                        zeroOne(switches.allmbState),
                        zeroOne(switches.attachState),
                        zeroOne(switches.htmlState),
                        zeroOne(switches.trashState),
                        zeroOne(mboxMode),
                        zeroOne(switches.origState),
                        zeroOne(switches.mailboxesState && !mboxMode),
                        beginDateText(dates.begin),
                        endDateText(dates.end)};
  if (mboxMode) {
    arguments += mboxFiles;
  } else if (switches.mailboxesState) {
    arguments += sources.mailboxList;
  } else {
    arguments += sources.accountList;
    arguments.append(QStringLiteral("Mailboxes"));
  }
  return arguments;
}

}  // namespace quillery::ingest
