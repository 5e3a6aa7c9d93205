#pragma once

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "archive/Archive.h"
#include "archive/TestFiles.h"
#include "search/ResultList.h"
#include "support/FakeDialogs.h"
#include "support/FakeProgress.h"
#include "support/MailFixtures.h"
#include "support/RecordingFiles.h"
#include "support/TestEnvironment.h"

namespace quillery::maintenance {

// Real archive files in a temporary folder, the real archive and result list, and the fake
// ports. Archives come from the real parser tool through quillery-cli or are built with SQL.
class MaintenanceFixture : public ::testing::Test {
 protected:
  QString path(const QString& name) const { return dir.filePath(name); }

  // Stores mbox files into the archive at file through quillery-cli and the real domail.
  static void store(const QString& file, const QStringList& mboxes) {
    const test::ProgramResult stored =
        test::runCli(QStringList{"store", "--archive", file, "--mbox"} + mboxes);
    ASSERT_EQ(stored.exitCode, 0) << stored.err.toStdString();
  }
  // The archive at file made of generated messages first .. first + count - 1.
  void storeGenerated(const QString& file, int count) {
    const QString mbox = file + QStringLiteral(".mbox");
    ASSERT_TRUE(test::MailFixtures::writeMbox(mbox, count));
    store(file, {mbox});
  }

  // An archive file of the old format, as openDB recognises it: the email table without
  // numAttach beside the other three tables, and the rows the statements put in.
  static void makeOldFormat(const QString& file, const QString& rows) {
    ASSERT_EQ(
        test::execOn(file,
                     QStringLiteral("CREATE TABLE email (id INTEGER PRIMARY KEY NOT NULL,from_fld "
                                    "varchar(127) NOT NULL,to_fld varchar(127) NOT NULL,subj_fld "
                                    "varchar(127) NOT NULL,date_fld datetime NOT NULL,mailbox "
                                    "varchar(127) NOT NULL,mailto varchar(127) NOT NULL,body_fld "
                                    "mediumtext NOT NULL);") +
                         archive::Archive::kCreateAttachments + archive::Archive::kCreateOrigemail +
                         archive::Archive::kCreateTags + rows),
        QString());
  }

  // "email|attachments|origemail|tags" row counts, read on a connection of the test's own.
  static QString counts(const QString& file) {
    return test::rowsOf(file,
                        "SELECT (SELECT count(*) FROM email)||'|'||(SELECT count(*) FROM "
                        "attachments)||'|'||(SELECT count(*) FROM origemail)||'|'||(SELECT "
                        "count(*) FROM tags)")
        .value(0);
  }
  static QString integrity(const QString& file) {
    return test::rowsOf(file, "PRAGMA integrity_check").join(';');
  }
  // Every message with all it carries (fields, tags, source, attachments), without its id,
  // sorted: two archives holding the same messages give the same list. where picks the
  // messages of the table "e" ("" for all).
  static QStringList messages(const QString& file, const QString& where = QString()) {
    QStringList rows = test::rowsOf(
        file,
        "SELECT date_fld,from_fld,to_fld,subj_fld,body_fld,mailbox,mailto,numAttach,(SELECT "
        "cat_fld||','||key_fld||','||priority_fld||','||notes_fld FROM tags t WHERE "
        "t.id=e.id),(SELECT orig_fld FROM origemail o WHERE o.id=e.id),(SELECT group_concat("
        "type_fld||','||filename_fld||','||encode_fld||','||attach_fld,';') FROM (SELECT * "
        "FROM attachments a WHERE a.id=e.id ORDER BY rowid)) FROM email e " +
            where);
    rows.sort();
    return rows;
  }
  static int maxId(const QString& file) {
    return test::rowsOf(file, "SELECT ifnull(max(id),0) FROM email").value(0).toInt();
  }

  // Each alert shown, as "title|message", and forgets them.
  QStringList takeAlerts() {
    QStringList out;
    for (const platform::Alert& alert : dialogs.alerts)
      out.append(alert.title + '|' + alert.message);
    dialogs.alerts.clear();
    return out;
  }

  QTemporaryDir dir;
  QString dbPath = path(QStringLiteral("archive.db"));
  test::FakeDialogs dialogs;
  test::FakeProgress progress;
  test::RecordingFiles files;
  archive::Archive archive{dialogs, files};
  search::ResultList list{archive, dialogs, progress};
};

}  // namespace quillery::maintenance
