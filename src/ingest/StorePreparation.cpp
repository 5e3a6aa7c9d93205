#include "ingest/StorePreparation.h"

#include <cstdio>

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "ingest/StoreRun.h"
#include "platform/Dialogs.h"
#include "text/LeadingInt.h"

namespace quillery::ingest {

StorePreparation::StorePreparation(archive::Archive& archive, platform::Dialogs& dialogs,
                                   StoreRunCounters& counters, const StoreRun& run, QObject* parent)
    : QObject(parent), archive_(archive), dialogs_(dialogs), counters_(counters), run_(run) {
  // Only the end of a run leaves mbox mode, as soon as its tool has ended.
  connect(&run, &StoreRun::toolEnded, this, [this] { mboxMode_ = false; });
}

std::optional<StoreDate> StorePreparation::setStoreDate(const QString& dbPath) {
  // Reopening the archive now would roll back the running store's transaction.
  if (run_.isRunning())
    return std::nullopt;
  if (!archive_.openForAction(dbPath))
    return std::nullopt;
  std::optional<StoreDate> begin;
  if (archive_.isOpen()) {
    archive_.sqlResult.clear();
    const archive::ExecResult result = archive_.exec(
        QStringLiteral("SELECT MAX(date_fld) FROM email"), archive::singleValueCallback, &archive_);
    if (!result.ok()) {
      std::fprintf(stderr, "SQL error: %s\n", result.error.toUtf8().constData());
    } else if (text::leadingInt(archive_.sqlResult) != 0) {
      const QString newest = archive_.sqlResult;
      begin = StoreDate{newest.mid(5, 2), newest.mid(8, 2), newest.mid(0, 4)};
      Q_EMIT beginStoreDateSelected(begin->year, begin->month, begin->day);
    }
    archive_.close();
  }
  Q_EMIT storeDatePanelShown();
  return begin;
}

bool StorePreparation::openMbox() {
  platform::OpenPanel panel;
  panel.title = QStringLiteral("Import MBOX Files");
  panel.prompt = QStringLiteral("Open");
  panel.filesOnly = true;
  panel.multipleSelection = true;
  return chooseMboxSources(panel);
}

bool StorePreparation::openMailFolder() {
  platform::OpenPanel panel;
  panel.title = QStringLiteral("Import Mail Folder");
  panel.prompt = QStringLiteral("Open");
  panel.filesOnly = false;
  return chooseMboxSources(panel);
}

bool StorePreparation::chooseMboxSources(const platform::OpenPanel& panel) {
  // The end of the running store would clear the mbox mode chosen now.
  if (run_.isRunning())
    return false;
  const QStringList chosen = dialogs_.runOpenPanel(panel);
  if (chosen.isEmpty())
    return false;
  useMboxFiles(chosen);
  Q_EMIT storeDatePanelShown();
  return true;
}

void StorePreparation::useMboxFiles(const QStringList& files) {
  sourceList_ = files;
  mboxMode_ = true;
}

void StorePreparation::cancelStore() {
  Q_EMIT storeDatePanelClosed();
}

std::optional<StoreRequest> StorePreparation::prepareRun(const QString& dbPath,
                                                         const StoreSwitches& switches,
                                                         const StoreDateRange& dates,
                                                         const StoreSources& sources) {
  // A second run while the tool works would share its record files; the counter test alone
  // lets one through until the first message has been read.
  if (counters_.processedCount != 0 || run_.isRunning())
    return std::nullopt;
  counters_.reset(StoreRunCounters::ResetPoint::RunStart);
  Q_EMIT storeDatePanelClosed();

  if (!mboxMode_ && !checkSources(switches, sources))
    return std::nullopt;
  if (!confirm(dbPath, switches))
    return std::nullopt;
  return StoreRequest{dbPath, switches, dates, mboxMode_, mboxMode_ ? sourceList_ : QStringList(),
                      sources};
}

bool StorePreparation::checkSources(const StoreSwitches& switches, const StoreSources& sources) {
  if (switches.mailboxesState && sources.mailboxList.isEmpty()) {
    dialogs_.critical(QString(),
                      QStringLiteral("You have not selected any mailboxes to store in the "
                                     "database.  Click on the Setup button to select your "
                                     "mailboxes."));
    return false;
  }
  if (!switches.mailboxesState && sources.accountList.isEmpty()) {
    dialogs_.critical(QString(),
                      QStringLiteral("You have not selected any email accounts to store in the "
                                     "database.  Click on the Setup button to select your email "
                                     "accounts."));
    return false;
  }
  return true;
}

bool StorePreparation::confirm(const QString& dbPath, const StoreSwitches& switches) {
  QString text;
  if (mboxMode_) {
    text = QStringLiteral(
               "Quillery will store and index the email in the selected mbox files, into the "
               "database file at ") +
           dbPath + QLatin1Char('.');
  } else {
    const QString what = switches.attachState ? QStringLiteral("and attachments ") : QString();
    text = QStringLiteral("Quillery will store and index the text ") + what +
           QStringLiteral(
               "of all emails in the In boxes and Sent boxes of your selected email "
               "accounts, ");
    if (switches.allmbState)
      text += QStringLiteral("plus all emails in all of your other mailboxes, ");
    text += QStringLiteral("into the database file at ") + dbPath + QLatin1Char('.');
  }
  if (switches.trashState)
    text += QStringLiteral(" The Trash & Junk mailboxes will also be stored.");
  const platform::Alert alert{platform::AlertStyle::Informational,
                              QStringLiteral("Store Email in Database"),
                              text,
                              {QStringLiteral("OK"), QStringLiteral("Cancel")}};
  return dialogs_.showAlert(alert) == 0;
}

}  // namespace quillery::ingest
