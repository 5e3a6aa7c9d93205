// Exports that fail part way: an output that takes no more bytes, a file that cannot be
// made, a read of the archive that is refused. The file keeps the whole messages written
// before the failure, the user sees the alert, and the archive file is not changed.
#include <sqlite3.h>

#include "ExportFixture.h"
#include "export/TextSaver.h"
#include "support/FailingWriter.h"

namespace quillery::exporting {
namespace {

using F = ExportFormat;
using test::FailingWriter;

const F kStreamed[] = {F::Mbox, F::Sql, F::Tab, F::Text, F::Source, F::List};

// Refuses reads of one table once that many statements have read it, as a locked or damaged
// table fails a query part way through an export, without touching the file.
struct ReadRefusal {
  QByteArray table;
  int allowed = 0;
  int statements = 0;
  int counted = -1;

  static int authorize(void* refusal, int action, const char* table, const char*, const char*,
                       const char*) {
    auto* r = static_cast<ReadRefusal*>(refusal);
    if (action == SQLITE_SELECT)
      ++r->statements;
    if (action != SQLITE_READ || r->table != table)
      return SQLITE_OK;
    if (r->counted != r->statements)
      r->counted = r->statements, --r->allowed;
    return r->allowed < 0 ? SQLITE_DENY : SQLITE_OK;
  }
};

class ExportFailuresTest : public ExportFixture {
 protected:
  void SetUp() override {
    ExportFixture::SetUp();
    listChosenMessages();
    digest = archiveDigest();
  }
  void TearDown() override {
    EXPECT_TRUE(noTransactionLeft());
    EXPECT_EQ(archiveDigest(), digest);
  }
  // The whole output of a format, and the offsets where its pieces (head, messages) end.
  QByteArray whole(F format, QList<qint64>& ends) {
    ends = {0};
    ports.openWriter = FailingWriter::after(FailingWriter::kNoLimit, &ends);
    EXPECT_EQ(run(format, "out"), ExportOutcome::Done);
    ports.openWriter = &FileExportWriter::open;
    dialogs.alerts.clear();
    return bytesOf(outputPath("out"));
  }
  void refuse(ReadRefusal* refusal) {
    sqlite3_set_authorizer(archive.archiveConnection, refusal ? &ReadRefusal::authorize : nullptr,
                           refusal);
  }
  QByteArray digest;
};

TEST_F(ExportFailuresTest, AFullOutputLeavesTheMessagesWrittenWholeAndSaysSo) {
  const QString full = "Couldn't write " + outputPath("out") +
                       ": No space left on device. The file ends with the last message written "
                       "whole.";
  for (const F format : kStreamed) {
    QList<qint64> ends;
    const QByteArray all = whole(format, ends);
    // No room at all, room up to the end of a piece exactly, room that ends inside one.
    for (const qint64 room : {qint64(0), ends[1], ends[1] + 1, all.size() - 1}) {
      ports.openWriter = FailingWriter::after(room);
      EXPECT_EQ(run(format, "out"), ExportOutcome::Failed);
      qint64 kept = 0;
      for (const qint64 end : ends)
        kept = end <= room ? end : kept;
      EXPECT_EQ(bytesOf(outputPath("out")), all.left(kept)) << int(format) << " in " << room;
      EXPECT_EQ(dialogs.messages(), QStringList{full});
      EXPECT_EQ(dialogs.alerts.value(0).style, platform::AlertStyle::Critical);
      EXPECT_FALSE(progress.isOpen);
      dialogs.alerts.clear();
    }
  }
}

TEST_F(ExportFailuresTest, AFullDeviceOrAFileThatCannotBeMadeGivesEachFormatsAlert) {
  const QString missing = outputPath("no folder/out");
  // Most say they cannot open the file; the raw-source save ends silently, and the save of
  // all text blocks does not look, runs to its end and reports success, as they always have.
  const QString cannotOpen = "Couldn't open " + missing;
  const QString says[] = {
      cannotOpen, cannotOpen,
      cannotOpen, "The email in the list has been saved to the text file " + missing + '.',
      {},         cannotOpen};
  for (std::size_t i = 0; i < std::size(kStreamed); ++i) {
    exportList(ports, {kStreamed[i], missing});
    EXPECT_EQ(dialogs.messages().join(""), says[i]);
    dialogs.alerts.clear();
    // /dev/full opens and then takes nothing.
    EXPECT_EQ(exportList(ports, {kStreamed[i], "/dev/full"}), ExportOutcome::Failed);
    EXPECT_EQ(dialogs.messages().join("").left(44), "Couldn't write /dev/full: No space left on d");
    // The open archive file is never taken for an export.
    EXPECT_EQ(exportList(ports, {kStreamed[i], dbPath}), ExportOutcome::Failed);
    EXPECT_EQ(dialogs.alerts.last().message,
              dbPath + " is the archive file that is open. Choose another file for the export.");
    dialogs.alerts.clear();
  }
  EXPECT_EQ(exportList(ports, {F::Archive, missing}), ExportOutcome::Failed);
  EXPECT_EQ(exportList(ports, {F::Archive, dbPath}), ExportOutcome::Failed);
  EXPECT_EQ(dialogs.messages().first(), "unable to open database file");  // SQLite's own text
  EXPECT_FALSE(QFile::exists(missing));
}

TEST_F(ExportFailuresTest, ARefusedReadStopsTheExportAfterTheMessagesBeforeIt) {
  const struct {
    F format;
    const char* table;  // whose reads are refused
    int allowed;        // statements that may still read it
    int pieces;         // head and messages that stay in the file
    bool panelUp;       // as the format has always left it
  } rows[] = {
      {F::Mbox, "origemail", 2, 2, true},     // the raw source of the third message
      {F::Mbox, "attachments", 1, 3, false},  // the fourth message's attachments (rebuilt)
      {F::Sql, "tags", 3, 4, false},          // the tags of the fourth, after the head
      {F::Tab, "email", 1, 2, false},         // the header and the first line
      {F::Text, "email", 4, 4, true},         // four text blocks
      {F::Source, "origemail", 1, 1, true},   // the first raw source
  };
  for (const auto& row : rows) {
    QList<qint64> ends;
    const QByteArray all = whole(row.format, ends);
    ReadRefusal refusal{row.table, row.allowed};
    refuse(&refusal);
    progress.isOpen = false;
    EXPECT_EQ(run(row.format, "out"), ExportOutcome::Failed) << row.table;
    refuse(nullptr);
    EXPECT_EQ(bytesOf(outputPath("out")), all.left(ends.value(row.pieces))) << row.table;
    EXPECT_TRUE(
        dialogs.messages().join("").startsWith("SQL error: access to " + QString(row.table) + '.'));
    EXPECT_EQ(progress.isOpen, row.panelUp) << row.table;
    dialogs.alerts.clear();
  }
}

TEST_F(ExportFailuresTest, ARefusedReadLeavesTheNewArchiveFileWithoutAnyMessageAndNothingPrinted) {
  // The fourth message's attachments cannot be read: the copy so far is not committed.
  ReadRefusal refusal{"attachments", 3};
  refuse(&refusal);
  EXPECT_EQ(run(F::Archive, "copy.db"), ExportOutcome::Failed);
  EXPECT_EQ(dialogs.messages(),
            QStringList{"SQL error: access to main.attachments.type_fld is prohibited"});
  EXPECT_FALSE(progress.isOpen);
  EXPECT_EQ(tableOf(outputPath("copy.db"),
                    "PRAGMA integrity_check; SELECT (SELECT count(*) FROM email) + (SELECT "
                    "count(*) FROM attachments) + (SELECT count(*) FROM origemail) + (SELECT "
                    "count(*) FROM tags)"),
            (QList<QStringList>{{"ok"}, {"0"}}));
  EXPECT_FALSE(archive.exec("SELECT count(*) FROM mergee.email").ok());  // detached

  ReadRefusal printing{"email", 1};
  refuse(&printing);
  EXPECT_EQ(TextSaver(ports).printText({}, true), std::nullopt);
  EXPECT_EQ(dialogs.messages().last(), "SQL error: access to email.id is prohibited");
  refuse(nullptr);
}

}  // namespace
}  // namespace quillery::exporting
