#include "archive/maintenance/FormatConversion.h"

#include "archive/Archive.h"
#include "archive/RowCallbacks.h"
#include "platform/Dialogs.h"
#include "platform/Progress.h"
#include "search/ResultList.h"
#include "text/LeadingInt.h"

namespace quillery::maintenance {

const char* const FormatConversion::kCreateEmailBak =
    "CREATE TEMPORARY TABLE email_bak (id INTEGER PRIMARY KEY NOT NULL,from_fld varchar(127) "
    "NOT NULL,to_fld varchar(127) NOT NULL,subj_fld varchar(127) NOT NULL,date_fld datetime "
    "NOT NULL,mailbox varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld mediumtext "
    "NOT NULL,numAttach INTEGER NOT NULL DEFAULT 0);";

FormatConversion::FormatConversion(archive::Archive& archive, search::ResultList& list,
                                   platform::Dialogs& dialogs, platform::Progress& progress,
                                   LineSink attachmentCountErrors, QObject* parent)
    : QObject(parent),
      archive_(archive),
      list_(list),
      dialogs_(dialogs),
      progress_(progress),
      attachmentCountErrors_(std::move(attachmentCountErrors)) {}

bool FormatConversion::convertDBFormat(const QString& dbPath) {
  if (archive_.storeRunUnderWay)
    return false;
  const archive::OpenStatus opened = archive_.openFile(dbPath);
  if (!opened.ok()) {
    dialogs_.critical(QString(), QStringLiteral("SQL Error: %1 %2").arg(dbPath, opened.error));
    return false;
  }
  if (archive_.hasCurrentFormat()) {
    dialogs_.critical(QString(), QStringLiteral("the database file %1 is already in the new "
                                                "format.  It doesn't need to be converted.")
                                     .arg(dbPath));
    archive_.close();
    return false;
  }
  if (!confirm(dbPath))
    return false;
  clearVisibleState();
  progress_.open(QStringLiteral("Converting..."));
  if (!rebuildEmailTable(dbPath))
    return false;

  archive_.idList.clear();
  archive_.idCount = 0;
  const archive::ExecResult ids =
      archive_.exec(QStringLiteral("SELECT id FROM email"), archive::idListCallback,
                    static_cast<archive::IdListState*>(&archive_));
  if (!ids.ok()) {
    progress_.close();
    dialogs_.critical(QString(), QStringLiteral("SQL Error: ") + ids.error);
    return false;
  }
  progress_.close();
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::All);
  progress_.setRunControlsVisible(true, platform::Progress::RunControls::Count);
  progress_.open(QStringLiteral("Calculating number of attachments..."));
  if (!countAttachments())
    return false;
  archive_.exec(QStringLiteral("COMMIT TRANSACTION"));
  archive_.idCount = 0;
  // The list is empty: its ids go too, so that what works on the listed ids finds none.
  archive_.idList.clear();
  progress_.close();
  dialogs_.inform(QString(), QStringLiteral("The pre-7.4.1 format database file %1 has been "
                                            "converted to the new format.")
                                 .arg(dbPath));
  return true;
}

bool FormatConversion::confirm(const QString& dbPath) {
  const QString question =
      QStringLiteral(
          "the database file %1 will be converted in place to the new format.  It's "
          "a good idea to make a backup copy of the database file before converting "
          "to the new format.")
          .arg(dbPath);
  return dialogs_.showAlert({platform::AlertStyle::Informational,
                             QString(),
                             question,
                             {QStringLiteral("Convert"), QStringLiteral("Cancel")}}) == 0;
}

void FormatConversion::clearVisibleState() {
  Q_EMIT storePanelClosed();
  list_.clear();
  Q_EMIT messageViewCleared();
  progress_.setRunControlsVisible(false, platform::Progress::RunControls::All);
}

bool FormatConversion::rebuildEmailTable(const QString& dbPath) {
  const QString statements[] = {
      QStringLiteral("BEGIN TRANSACTION"),
      QString::fromLatin1(kCreateEmailBak),
      QStringLiteral("INSERT INTO email_bak(id,from_fld,to_fld,subj_fld,date_fld,mailbox,mailto,"
                     "body_fld) SELECT * FROM email"),
      QStringLiteral("DROP TABLE email"),
      QString::fromLatin1(archive::Archive::kCreateEmail),
      QStringLiteral("INSERT INTO email SELECT * FROM email_bak"),
      QStringLiteral("DROP TABLE email_bak"),
  };
  archive::ExecResult failed;
  for (const QString& statement : statements) {
    failed = archive_.exec(statement);
    if (!failed.ok())
      break;
  }
  // A table whose rows could not be copied (one of another layout) must not be dropped
  // with them: the rebuild is undone as a whole rather than committed half done.
  if (!failed.ok())
    archive_.exec(QStringLiteral("ROLLBACK TRANSACTION"));
  else
    failed = archive_.exec(QStringLiteral("COMMIT TRANSACTION"));
  if (failed.ok())
    return true;
  archive_.close();
  progress_.close();
  dialogs_.critical(QString(), QStringLiteral("SQL Error: %1 %2").arg(dbPath, failed.error));
  archive_.openFailed = true;
  return false;
}

bool FormatConversion::countAttachments() {
  // Every message's attachments are looked up by id: without the index each count would
  // read the whole attachments table.
  archive_.ensureIndexes();
  archive_.exec(QStringLiteral("BEGIN TRANSACTION"));
  const archive::IdList ids = archive_.idList;
  for (qsizetype index = 0; index < ids.size(); ++index) {
    const int id = text::leadingInt(ids.at(index));
    const archive::ExecResult counted = archive_.exec(
        QStringLiteral("SELECT COUNT(id) FROM attachments WHERE id=%1 AND filename_fld NOT LIKE "
                       "'%html' AND filename_fld NOT LIKE '%etf'")
            .arg(id),
        archive::singleValueCallback, &archive_);
    if (!counted.ok()) {
      dialogs_.critical(QString(), QStringLiteral("SQL error: ") + counted.error);
      return false;
    }
    const archive::ExecResult updated =
        archive_.exec(QStringLiteral("UPDATE email SET numAttach=%1 WHERE id=%2")
                          .arg(text::leadingInt(archive_.sqlResult))
                          .arg(id));
    if (!updated.ok())
      attachmentCountErrors_(QStringLiteral("SQL error updating number of attachments\n"));
    progress_.doProgressCount(int(index), 10);
  }
  return true;
}

}  // namespace quillery::maintenance
