// Backup, restore and compaction of real archive files, with faults injected into the file
// operations.
#include <QDir>
#include <QFileInfo>

#include "MaintenanceFixture.h"
#include "archive/maintenance/Backup.h"
#include "archive/maintenance/Compaction.h"
#include "archive/maintenance/Restore.h"

namespace quillery::maintenance {
namespace {

using test::readFile;
using test::writeFile;

QByteArray bytes(const QString& file) {
  QFile f(file);
  return QFile::exists(file) && f.open(QIODevice::ReadOnly) ? f.readAll() : "(missing)";
}

class BackupRestoreTest : public MaintenanceFixture {
 protected:
  void SetUp() override { storeGenerated(dbPath, 12); }
  bool backUp(QString& backupPath) {
    return Backup(archive, dialogs, files, progress).backupDB(dbPath, backupPath, [this] {
      ++saved;
    });
  }
  bool restore(const QString& backupPath) {
    return Restore(archive, dialogs, files, progress).restoreDB(dbPath, backupPath);
  }
  int saved = 0;
};

TEST_F(BackupRestoreTest, AFirstBackupIsProposedBesideTheArchiveAndLaterOnesReplaceTheLast) {
  const QString bak = dbPath + QStringLiteral(".bak");
  QString backupPath;
  dialogs.setNextFileName(bak);
  ASSERT_TRUE(backUp(backupPath));
  ASSERT_EQ(dialogs.savePanels.size(), 1);
  const platform::SavePanel& panel = dialogs.savePanels[0];
  EXPECT_EQ(QStringList({panel.title, panel.directory, panel.fileName}),
            QStringList({"Back Up Database", dir.path(), "archive.db.bak"}));
  EXPECT_TRUE(panel.canCreateDirectories);
  EXPECT_EQ(backupPath, bak);
  EXPECT_EQ(saved, 1);
  EXPECT_EQ(bytes(bak), bytes(dbPath));
  EXPECT_EQ(dialogs.alerts.value(0).style, platform::AlertStyle::Informational);
  EXPECT_EQ(takeAlerts(), QStringList{"Backup is done|Copied From:\n" + dbPath + "\nTo:\n" + bak});
  EXPECT_EQ(progress.events, (QStringList{"open:Copying...", "close"}));

  ASSERT_EQ(test::execOn(dbPath, "DELETE FROM email WHERE id < 4"), QString());
  // The search index of the earlier backup describes messages the new copy no longer has.
  ASSERT_TRUE(writeFile(bak + ".index", "an index of the earlier backup"));
  dialogs.setNextFileName(bak);
  ASSERT_TRUE(backUp(backupPath));
  EXPECT_EQ(dialogs.savePanels[1].fileName, "archive.db.bak");
  EXPECT_EQ(bytes(bak), bytes(dbPath));
  EXPECT_FALSE(QFile::exists(bak + ".index"));
}

TEST_F(BackupRestoreTest, AFailedBackupSaysWhyAndLeavesTheArchiveAsItWas) {
  const QString bak = path(QStringLiteral("archive.db.bak"));
  const QString missing = path(QStringLiteral("missing.db"));
  const QString archiveCounts = counts(dbPath);
  const struct {
    const char* name;
    QString archivePath, chosen;
    std::function<void()> fault;
    QString alert;
  } rows[] = {
      {"the panel cancelled", dbPath, QString(), [] {}, QString()},
      {"no archive file", missing, bak, [] {}, "Backup failed|" + missing + " does not exist."},
      {"a backup in the way that cannot be removed", dbPath, bak,
       [&] { writeFile(bak, "old backup"), files.removeFails = true; }, "|Unable to remove @"},
      {"the archive chosen as its own backup", dbPath, dir.filePath("./archive.db"), [] {},
       "Backup failed|Unable to copy " + dbPath + " to " + dir.filePath("./archive.db")},
      {"a full disk", dbPath, bak, [&] { files.copyFailsAfter = 8192; },
       "Backup failed|Unable to copy " + dbPath + " to " + bak},
  };
  for (const auto& row : rows) {
    QFile::remove(bak);
    files.removeFails = false;
    files.copyFailsAfter = -1;
    row.fault();
    QString backupPath;
    dialogs.setNextFileName(row.chosen);
    EXPECT_FALSE(Backup(archive, dialogs, files, progress)
                     .backupDB(row.archivePath, backupPath, [this] { ++saved; }))
        << row.name;
    EXPECT_EQ(takeAlerts(), row.alert.isEmpty() ? QStringList() : QStringList{row.alert})
        << row.name;
    EXPECT_EQ(backupPath, row.chosen.isEmpty() ? row.archivePath + ".bak" : row.chosen) << row.name;
    EXPECT_EQ(integrity(dbPath) + ' ' + counts(dbPath), "ok " + archiveCounts) << row.name;
    EXPECT_FALSE(progress.isOpen) << row.name;
  }
  EXPECT_EQ(QFileInfo(bak).size(), 8192);  // what the full disk took is left as it was written
  EXPECT_EQ(saved, 0);
}

TEST_F(BackupRestoreTest, RestoreAsksThenCopiesTheBackupOverTheArchive) {
  const QString bak = path(QStringLiteral("backup.db"));
  storeGenerated(bak, 5);
  EXPECT_TRUE(restore(bak));
  ASSERT_EQ(dialogs.alerts.size(), 2);
  EXPECT_EQ(dialogs.alerts[0].buttons, (QStringList{"Restore", "Cancel"}));
  EXPECT_EQ(takeAlerts(), (QStringList{"Restore Database|Do you want to restore:\n" + dbPath +
                                           "\nFrom:\n" + bak + "?",
                                       "Done restoring database|Copied " + bak + " to " + dbPath}));
  EXPECT_EQ(bytes(dbPath), bytes(bak));
  EXPECT_EQ(progress.events, (QStringList{"open:Restoring...", "close"}));
  EXPECT_FALSE(archive.isOpen());
}

TEST_F(BackupRestoreTest, ARestoreThatCannotBeMadeOrFromNoArchiveSaysSoAndKeepsTheBackup) {
  const QString good = path(QStringLiteral("good.bak"));
  ASSERT_TRUE(QFile::copy(dbPath, good));
  const QString text = path(QStringLiteral("notes.txt"));
  ASSERT_TRUE(writeFile(text, "not an archive\n"));
  const QString truncated = path(QStringLiteral("truncated.bak"));
  ASSERT_TRUE(writeFile(truncated, bytes(dbPath).left(3 * 4096)));
  const QString notValid = QStringLiteral("Open Failed|This is not a valid database file.");
  const struct {
    const char* name;
    QString backup;
    std::function<void()> fault;
    QString alert;
    QString nextOpen;  // the alert of the next open, "" when the archive opens as before
  } rows[] = {
      {"no backup yet", QString(), [] {},
       "You do not have a backup file.|Go to Backup Database to create a backup file.", ""},
      {"a folder", dir.path(), [] {}, "|SQL Error: 14 unable to open database file", ""},
      {"the user cancels", good, [&] { dialogs.setNextAnswer(1); }, "", ""},
      {"a text file", text, [] {}, "Done restoring database|Copied " + text + " to " + dbPath,
       notValid},
      {"a truncated copy", truncated, [] {},
       "Done restoring database|Copied " + truncated + " to " + dbPath, notValid},
      {"a copy that fails part way", good, [&] { files.copyFailsAfter = 4096; },
       "Restore failed|Unable to copy " + good + " to " + dbPath, notValid},
  };
  for (const auto& row : rows) {
    ASSERT_TRUE(QFile::remove(dbPath) && QFile::copy(good, dbPath));
    const QByteArray backupBytes = bytes(row.backup);
    files.copyFailsAfter = -1;
    row.fault();
    restore(row.backup);
    QStringList shown = takeAlerts();
    shown.removeIf([](const QString& alert) { return alert.startsWith("Restore Database|"); });
    EXPECT_EQ(shown.join(""), row.alert) << row.name;
    EXPECT_EQ(bytes(row.backup), backupBytes) << row.name;
    archive.openDB(dbPath);
    EXPECT_EQ(takeAlerts().join(""), row.nextOpen) << row.name;
    archive.close();
    archive.openFailed = false;
  }
  QFile::remove(dbPath);
  EXPECT_FALSE(restore(good));
  EXPECT_EQ(takeAlerts(), QStringList{"You have not specified a database file.|Go to Setup to "
                                      "create a database file."});
}

TEST_F(BackupRestoreTest, CompactionGivesBackTheSpaceOfDeletedMessagesAndRefusesTheOldFormat) {
  // Stored mail, and enough long messages that half of them make a difference.
  ASSERT_EQ(test::execOn(dbPath,
                         "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n "
                         "WHERE i<300) INSERT INTO email SELECT NULL,'f','t','s','2020-01-"
                         "01 00:00:00','m','r',hex(randomblob(2000)),0 FROM n;"
                         "DELETE FROM email WHERE id % 2 = 0; DELETE FROM attachments "
                         "WHERE id % 2 = 0; DELETE FROM origemail WHERE id % 2 = 0;"),
            QString());
  const QStringList kept = messages(dbPath);
  const qint64 before = QFileInfo(dbPath).size();
  EXPECT_TRUE(Compaction(archive, progress).compactDB(dbPath));
  EXPECT_LT(QFileInfo(dbPath).size(), before * 2 / 3);
  EXPECT_EQ(messages(dbPath), kept);
  EXPECT_EQ(integrity(dbPath), "ok");
  EXPECT_EQ(progress.events, (QStringList{"open:Compacting database...", "close"}));
  EXPECT_TRUE(archive.isOpen());

  const QString old = path(QStringLiteral("old.db"));
  makeOldFormat(old, "INSERT INTO email VALUES(1,'f','t','s','2001-01-01 00:00:00','m','r','b');");
  const QByteArray oldBytes = bytes(old);
  EXPECT_FALSE(Compaction(archive, progress).compactDB(old));
  EXPECT_EQ(takeAlerts(),
            QStringList{"Open Failed|" + QString::fromUtf8(archive::Archive::kOldFormatMessage)});
  EXPECT_FALSE(archive.openFailed);
  EXPECT_EQ(bytes(old), oldBytes);
  EXPECT_EQ(progress.events.size(), 2);
}

}  // namespace
}  // namespace quillery::maintenance
