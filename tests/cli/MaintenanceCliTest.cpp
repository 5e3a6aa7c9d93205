// The archive maintenance commands of quillery-cli as a script runs them, on archives stored
// by the real parser tool, with the texts on the two streams and the exit status checked.
#include <QFileInfo>

#include "CliFixture.h"

namespace quillery::cli {
namespace {

using test::readFile;

class MaintenanceCliTest : public CliFixture {
 protected:
  void SetUp() override {
    CliFixture::SetUp();
    ASSERT_EQ(cli({"store", "--archive", archive, "--mbox", mbox(12)}).exitCode, 0);
  }
  const QString archive = homeDir.filePath(QStringLiteral("mail.db"));
};

TEST_F(MaintenanceCliTest, ABackupIsKeptAndRestoredOnlyWithYes) {
  const CliResult backup = cli({"backup", "--archive", archive});
  const QString bak = archive + ".bak";
  EXPECT_EQ(backup.exitCode, 0) << backup.err.toStdString();
  EXPECT_EQ(backup.out, "Backup is done: Copied From:\n" + archive + "\nTo:\n" + bak + '\n');
  EXPECT_EQ(backup.err, QString());
  EXPECT_EQ(test::bytesOf(bak), test::bytesOf(archive));
  EXPECT_TRUE(readFile(home() + "/.config/Quillery/Quillery.conf").contains("backupPath=" + bak));

  ASSERT_EQ(test::execOn(archive, "DELETE FROM email"), QString());
  const CliResult asked = cli({"restore", "--archive", archive});
  EXPECT_EQ(asked.exitCode, 1);
  EXPECT_EQ(asked.err, "Restore Database: Do you want to restore:\n" + archive + "\nFrom:\n" + bak +
                           "?\nquillery-cli: restore was not confirmed: give --yes to go "
                           "ahead\n");
  EXPECT_EQ(count(archive), "0");
  // The kept backup path is where restore looks.
  const CliResult restored = cli({"restore", "--archive", archive, "--yes"});
  EXPECT_EQ(restored.exitCode, 0);
  EXPECT_EQ(restored.out, "Done restoring database: Copied " + bak + " to " + archive + '\n');
  EXPECT_EQ(count(archive), "12");

  const CliResult elsewhere = cli({"backup", "--archive", archive, "--to", "copies/mail.copy"});
  EXPECT_EQ(elsewhere.exitCode, 1);  // the folder is not there
  EXPECT_TRUE(elsewhere.err.startsWith("Backup failed: Unable to copy " + archive + " to "));
}

TEST_F(MaintenanceCliTest, ABackupOntoAFullDiskFailsAndTheArchiveStaysWhole) {
  // A file system of 16 KB of its own, in a mount namespace of its own (needs root).
  const QString small = homeDir.filePath(QStringLiteral("small"));
  ASSERT_TRUE(QDir().mkpath(small));
  if (cli({"-m", "sh", "-c", "mount -t tmpfs -o size=16k tmpfs '" + small + "'"},
          QStringLiteral("/usr/bin/unshare"))
          .exitCode != 0)
    GTEST_SKIP() << "no small file system can be mounted here (needs root and unshare)";
  const QByteArray before = test::bytesOf(archive);
  ASSERT_GT(before.size(), 16 * 1024);
  const QString target = small + QStringLiteral("/mail.bak");
  const CliResult full = cli(
      {"-m", "sh", "-c",
       QStringLiteral("mount -t tmpfs -o size=16k tmpfs '%1' && '%2' backup --archive '%3' --to "
                      "'%4'; code=$?; ls -A '%1'; exit $code")
           .arg(small, test::toolPath(QStringLiteral("quillery-cli")), archive, target)},
      QStringLiteral("/usr/bin/unshare"));
  EXPECT_EQ(full.exitCode, 1);
  EXPECT_EQ(full.err, "Backup failed: Unable to copy " + archive + " to " + target + '\n');
  EXPECT_EQ(full.out, QString());  // and no partial backup was left on the small disk
  EXPECT_EQ(test::bytesOf(archive), before);
  EXPECT_EQ(test::rowsOf(archive, "PRAGMA integrity_check"), QStringList{"ok"});
}

TEST_F(MaintenanceCliTest, AnOldArchiveIsConvertedCompactedAndMergedWithTheWindowsTexts) {
  const QString old = homeDir.filePath(QStringLiteral("old.db"));
  ASSERT_EQ(
      test::execOn(old,
                   "CREATE TABLE email (id INTEGER PRIMARY KEY,from_fld,to_fld,subj_fld,"
                   "date_fld,mailbox,mailto,body_fld);INSERT INTO email VALUES(1,'f','t',"
                   "'s','1999-01-01 00:00:00','m','r','b');CREATE TABLE attachments (id,"
                   "type_fld,filename_fld,encode_fld,attach_fld);CREATE TABLE origemail (id,"
                   "orig_fld);CREATE TABLE tags (id,cat_fld,key_fld,priority_fld,notes_fld);"),
      QString());
  const CliResult refused = cli({"compact", "--archive", old});
  EXPECT_EQ(refused.exitCode, 1);
  EXPECT_TRUE(refused.err.startsWith("Open Failed: This appears to be a pre-version 7.4.1"));
  EXPECT_EQ(cli({"convert", "--archive", old}).exitCode, 1);
  const CliResult converted = cli({"convert", "--archive", old, "--yes"});
  EXPECT_EQ(converted.exitCode, 0) << converted.err.toStdString();
  EXPECT_EQ(converted.out, "The pre-7.4.1 format database file " + old +
                               " has been converted to the new format.\n");
  EXPECT_EQ(cli({"compact", "--archive", old}).exitCode, 0);

  const CliResult merged = cli({"merge", archive, "--archive", old, "--yes"});
  EXPECT_EQ(merged.exitCode, 0) << merged.err.toStdString();
  EXPECT_EQ(merged.out, "Done Merging Email: Processed: 12\nDuplicates: 0\n");
  EXPECT_EQ(count(old), "13");

  const QString text = homeDir.filePath(QStringLiteral("notes.txt"));
  ASSERT_TRUE(test::writeFile(text, "notes"));
  const CliResult notArchive = cli({"merge", text, "--archive", old, "--yes"});
  EXPECT_EQ(notArchive.exitCode, 1);
  EXPECT_EQ(notArchive.err, "Open Failed: This is not a valid database file.\n");
  EXPECT_EQ(count(old), "13");
  const QString missing = homeDir.filePath(QStringLiteral("typo.db"));
  EXPECT_EQ(cli({"merge", missing, "--archive", old, "--yes"}).err,
            "quillery-cli: no file to merge at " + missing + '\n');
  EXPECT_FALSE(QFileInfo::exists(missing));
}

}  // namespace
}  // namespace quillery::cli
