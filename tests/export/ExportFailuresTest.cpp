// Exports that fail part way: an output that takes no more bytes, a file that cannot be
// made, a read of the archive that is refused. The file keeps the whole messages written
// before the failure, the user sees the alert, and the archive file is not changed.
#include <sqlite3.h>

#include <functional>

#include "ExportFixture.h"
#include "export/ArchiveExporter.h"
#include "export/MboxExporter.h"
#include "export/SqlDumpExporter.h"
#include "export/TabExporter.h"
#include "export/TextSaver.h"
#include "support/FailingWriter.h"

namespace quillery::exporting {
namespace {

using platform::AlertStyle;
using test::FailingWriter;

// Refuses reads of one table once a number of statements have read it, the way a locked
// or damaged table fails a query part way through an export, without touching the file.
struct ReadRefusal {
  QByteArray table;
  int allowedStatements = 0;
  int statement = 0;
  int lastCounted = -1;
  int counted = 0;

  static int authorize(void* context, int action, const char* table, const char*, const char*,
                       const char*) {
    auto* refusal = static_cast<ReadRefusal*>(context);
    if (action == SQLITE_SELECT)
      ++refusal->statement;
    if (action != SQLITE_READ || table == nullptr || refusal->table != table)
      return SQLITE_OK;
    if (refusal->lastCounted != refusal->statement) {
      refusal->lastCounted = refusal->statement;
      ++refusal->counted;
    }
    return refusal->counted > refusal->allowedStatements ? SQLITE_DENY : SQLITE_OK;
  }
};

class ExportFailuresTest : public ExportFixture {
 protected:
  using Run = std::function<ExportOutcome(ExportPorts&, const QString& path)>;
  struct Streamed {
    const char* name;
    Run run;
  };
  static QList<Streamed> streamed() {
    return {
        {"mbox",
         [](ExportPorts& p, const QString& path) {
           QString exportPath;
           return MboxExporter(p, exportPath).writeMbox(path);
         }},
        {"sql",
         [](ExportPorts& p, const QString& path) {
           QString exportPath;
           return SqlDumpExporter(p, exportPath).writeScript(path, 1, true);
         }},
        {"tab",
         [](ExportPorts& p, const QString& path) {
           QString exportPath;
           return TabExporter(p, exportPath).writeTab(path, true);
         }},
        {"blocks", [](ExportPorts& p, const QString& path) { return TextSaver(p).saveAll(path); }},
        {"sources",
         [](ExportPorts& p, const QString& path) { return TextSaver(p).saveOrigAll(path); }},
        {"list", [](ExportPorts& p, const QString& path) { return TextSaver(p).saveList(path); }},
    };
  }

  // The whole output of a format and the offsets where its messages end, 0 first.
  QByteArray wholeOutput(const Streamed& format, QList<qint64>& ends) {
    ends = {0};
    ports.openWriter = FailingWriter::after(FailingWriter::kNoLimit, &ends);
    const QString path = outputPath(QString::fromLatin1(format.name));
    EXPECT_EQ(format.run(ports, path), ExportOutcome::Done) << format.name;
    ports.openWriter = &FileExportWriter::open;
    dialogs.alerts.clear();
    return bytesOf(path);
  }

  void refuseReads(ReadRefusal& refusal) {
    sqlite3_set_authorizer(archive.archiveConnection, &ReadRefusal::authorize, &refusal);
  }
};

TEST_F(ExportFailuresTest, AFullOutputLeavesTheMessagesWrittenWholeAndSaysSo) {
  listChosenMessages();
  const QByteArray digest = archiveDigest();
  for (const Streamed& format : streamed()) {
    QList<qint64> ends;
    const QByteArray whole = wholeOutput(format, ends);
    ASSERT_GE(ends.size(), 3) << format.name;
    // No room at all, room up to the end of a message exactly, room that ends inside one.
    for (const qint64 room : {qint64(0), ends[1], ends[1] + 1, whole.size() - 1}) {
      dialogs.alerts.clear();
      ports.openWriter = FailingWriter::after(room);
      const QString path = outputPath(QString::fromLatin1(format.name));
      EXPECT_EQ(format.run(ports, path), ExportOutcome::Failed) << format.name << room;
      qint64 kept = 0;
      for (const qint64 end : ends)
        if (end <= room)
          kept = end;
      EXPECT_EQ(bytesOf(path), whole.left(kept)) << format.name << " with room for " << room;
      ASSERT_EQ(dialogs.alerts.size(), 1) << format.name;
      EXPECT_EQ(dialogs.alerts[0].style, AlertStyle::Critical);
      EXPECT_EQ(dialogs.alerts[0].message,
                "Couldn't write " + path +
                    ": No space left on device. The file ends with the last message written "
                    "whole.");
      EXPECT_FALSE(progress.isOpen) << format.name;
      EXPECT_TRUE(noTransactionLeft()) << format.name;
    }
  }
  EXPECT_EQ(archiveDigest(), digest);
}

TEST_F(ExportFailuresTest, AFullDeviceAndAFileThatCannotBeMadeGiveEachFormatsAlert) {
  listChosenMessages();
  const QString missing = outputPath("no such folder/out");
  const QList<Streamed> formats = streamed();
  // Most say they cannot open the file; the raw-source save ends silently and the save of
  // all text blocks does not look, runs to its end and reports success, as they always have.
  const QStringList cannotOpen = {
      "Couldn't open " + missing,
      "Couldn't open " + missing,
      "Couldn't open " + missing,
      "The email in the list has been saved to the text file " + missing + '.',
      {},
      "Couldn't open " + missing};
  for (qsizetype i = 0; i < formats.size(); ++i) {
    dialogs.alerts.clear();
    const ExportOutcome outcome = formats[i].run(ports, missing);
    EXPECT_EQ(outcome, i == 3 ? ExportOutcome::Done : ExportOutcome::Failed) << formats[i].name;
    EXPECT_EQ(dialogs.messages().join(""), cannotOpen[i]) << formats[i].name;
    EXPECT_TRUE(noTransactionLeft());

    // /dev/full opens and then takes nothing.
    dialogs.alerts.clear();
    EXPECT_EQ(formats[i].run(ports, "/dev/full"), ExportOutcome::Failed) << formats[i].name;
    EXPECT_EQ(dialogs.messages(),
              QStringList{"Couldn't write /dev/full: No space left on device. The file ends "
                          "with the last message written whole."});
  }
  EXPECT_FALSE(QFile::exists(missing));
  // The new archive file cannot be made there either; SQLite's message is shown as it is.
  dialogs.alerts.clear();
  QString exportPath;
  EXPECT_EQ(ArchiveExporter(ports, exportPath).writeArchive(missing, true), ExportOutcome::Failed);
  EXPECT_EQ(dialogs.messages(), QStringList{"unable to open database file"});
}

TEST_F(ExportFailuresTest, TheOpenArchiveFileIsNeverTakenForAnExport) {
  listChosenMessages();
  const QByteArray digest = archiveDigest();
  for (const Streamed& format : streamed())
    EXPECT_EQ(format.run(ports, dbPath), ExportOutcome::Failed) << format.name;
  QString exportPath;
  EXPECT_EQ(ArchiveExporter(ports, exportPath).writeArchive(dbPath, true), ExportOutcome::Failed);
  EXPECT_EQ(dialogs.alerts.size(), 7);
  EXPECT_EQ(dialogs.alerts.last().title, "Export Failed");
  EXPECT_EQ(dialogs.alerts.last().message,
            dbPath + " is the archive file that is open. Choose another file for the export.");
  EXPECT_EQ(archiveDigest(), digest);
}

TEST_F(ExportFailuresTest, ARefusedReadStopsTheExportAfterTheMessagesBeforeIt) {
  listChosenMessages();
  const QByteArray digest = archiveDigest();
  const QList<Streamed> formats = streamed();
  const struct {
    int format;         // in streamed()
    const char* table;  // whose reads are refused
    int allowed;        // statements that may still read it
    int wholePieces;    // head and messages that stay in the file
    bool panelStaysUp;  // as the format always left it
  } rows[] = {
      {0, "origemail", 2, 2, true},     // mbox: the raw source of the third message
      {0, "attachments", 1, 3, false},  // mbox: the attachments of the fourth (rebuilt)
      {1, "tags", 3, 4, false},         // script: the tags of the fourth, after the head
      {1, "email", 0, 1, false},        // script: the head alone
      {2, "email", 1, 2, false},        // table: the header and the first line
      {3, "email", 4, 4, true},         // text blocks: four blocks
      {4, "origemail", 1, 1, true},     // raw sources: the first source
  };
  for (const auto& row : rows) {
    const Streamed& format = formats[row.format];
    QList<qint64> ends;
    const QByteArray whole = wholeOutput(format, ends);
    ReadRefusal refusal{row.table, row.allowed};
    refuseReads(refusal);
    progress.isOpen = false;
    const QString path = outputPath(QString::fromLatin1(format.name));
    EXPECT_EQ(format.run(ports, path), ExportOutcome::Failed) << format.name << row.table;
    sqlite3_set_authorizer(archive.archiveConnection, nullptr, nullptr);
    EXPECT_EQ(bytesOf(path), whole.left(ends.value(row.wholePieces)))
        << format.name << " " << row.table;
    EXPECT_EQ(dialogs.messages().join("").section('.', 0, 0),
              QStringLiteral("SQL error: access to ") + row.table);
    EXPECT_EQ(progress.isOpen, row.panelStaysUp) << format.name << row.table;
    EXPECT_TRUE(noTransactionLeft());
    dialogs.alerts.clear();
  }
  EXPECT_EQ(archiveDigest(), digest);
}

TEST_F(ExportFailuresTest, ARefusedReadLeavesTheNewArchiveFileWithoutAnyMessage) {
  listChosenMessages();
  const QByteArray digest = archiveDigest();
  // The fourth message's attachments cannot be read: the copy so far is not committed.
  ReadRefusal refusal{"attachments", 3};
  refuseReads(refusal);
  const QString path = outputPath("copy.db");
  QString exportPath;
  EXPECT_EQ(ArchiveExporter(ports, exportPath).writeArchive(path, true), ExportOutcome::Failed);
  sqlite3_set_authorizer(archive.archiveConnection, nullptr, nullptr);
  EXPECT_EQ(dialogs.messages(),
            QStringList{"SQL error: access to main.attachments.type_fld is prohibited"});
  EXPECT_FALSE(progress.isOpen);
  EXPECT_EQ(test::rowsOf(path, "PRAGMA integrity_check"), QStringList{"ok"});
  EXPECT_EQ(test::rowsOf(path,
                         "SELECT (SELECT count(*) FROM email) + (SELECT count(*) FROM "
                         "attachments) + (SELECT count(*) FROM origemail) + (SELECT "
                         "count(*) FROM tags)"),
            QStringList{"0"});
  EXPECT_TRUE(noTransactionLeft());
  EXPECT_FALSE(archive.exec("SELECT count(*) FROM mergee.email").ok());  // detached
  EXPECT_EQ(archiveDigest(), digest);

  // Printing stops at a refused read and prints nothing.
  ReadRefusal printing{"email", 1};
  refuseReads(printing);
  dialogs.alerts.clear();
  EXPECT_EQ(TextSaver(ports).printText({}, true), std::nullopt);
  EXPECT_EQ(dialogs.messages(), QStringList{"SQL error: access to email.id is prohibited"});
}

}  // namespace
}  // namespace quillery::exporting
