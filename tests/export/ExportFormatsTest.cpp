// Each format's exact text for the chosen messages, kept as expected files beside the tests,
// and the rules of the formats that a handful of rows show best.
#include "ExportFixture.h"
#include "export/ArchiveExporter.h"
#include "export/MboxDate.h"
#include "export/MboxExporter.h"
#include "export/NonLossyAscii.h"
#include "export/SqlDumpExporter.h"
#include "export/TabExporter.h"
#include "export/TextSaver.h"

namespace quillery::exporting {
namespace {

using F = ExportFormat;

// The streamed formats, their expected files and the start of their completion alerts.
const struct {
  F format;
  const char* file;
  const char* done;
} kFormats[] = {
    {F::Mbox, "chosen.mbox", "The data has been exported to the mbox file "},
    {F::Sql, "chosen.sql", "The data has been exported to the SQL file "},
    {F::Tab, "chosen.tab", "The data has been exported to the tab-delimited text file "},
    {F::Text, "chosen-blocks.txt", "The email in the list has been saved to the text file "},
    {F::Source, "chosen-sources.txt",
     "The raw source email in the list has been saved to the text file "},
    {F::List, "chosen-list.txt", "This list has been saved to "},
};

using ExportFormatsTest = ExportFixture;

TEST_F(ExportFormatsTest, EachFormatWritesTheChosenMessagesExactlyAndAnEmptyListItsHead) {
  listChosenMessages();
  const QByteArray digest = archiveDigest();
  for (const auto& f : kFormats) {
    dialogs.alerts.clear();
    EXPECT_EQ(run(f.format, f.file), ExportOutcome::Done) << f.file;
    EXPECT_TRUE(matchesExpected(f.file, bytesOf(outputPath(f.file))));
    EXPECT_EQ(dialogs.messages(), QStringList{f.done + outputPath(f.file) + '.'});
    EXPECT_EQ(dialogs.alerts.value(0).style, platform::AlertStyle::Informational);
    EXPECT_FALSE(progress.isOpen) << f.file;
    EXPECT_TRUE(noTransactionLeft()) << f.file;
  }
  EXPECT_EQ(archiveDigest(), digest);

  // Without raw sources the script has no origemail rows and the table no last column.
  run(F::Sql, "chosen.sql", 1, false);
  run(F::Tab, "chosen.tab", 1, false);
  EXPECT_FALSE(bytesOf(outputPath("chosen.sql")).contains("INSERT INTO origemail"));
  for (const QByteArray& line : bytesOf(outputPath("chosen.tab")).split('\n'))
    EXPECT_TRUE(line.isEmpty() || line.count('\t') == 8) << line.constData();

  // An empty list: an empty file, or the script's head or the table's header alone.
  retrieve(archive::listStatement(u" WHERE id=0"));
  const QByteArray heads[] = {
      "",
      SqlDumpExporter::scriptHead("chosen").toUtf8(),
      "id\tdatetime\tfrom\tto\tsubject\tmailto\tmailbox\tbody\tnumattach\trawsource\n",
      "",
      "",
      ""};
  for (std::size_t i = 0; i < std::size(kFormats); ++i) {
    EXPECT_EQ(run(kFormats[i].format, kFormats[i].file), ExportOutcome::Done);
    EXPECT_EQ(bytesOf(outputPath(kFormats[i].file)), heads[i]) << kFormats[i].file;
  }
}

TEST_F(ExportFormatsTest, ADescendingListIsWrittenAndNumberedInTheOrderShown) {
  listChosenMessages();
  list.clickColumn("emailID");
  list.clickColumn("emailID");
  run(F::Sql, "chosen-descending.sql", 1);
  EXPECT_TRUE(
      matchesExpected("chosen-descending.sql", bytesOf(outputPath("chosen-descending.sql"))));
  // Selected rows are walked in ascending display order, whatever order they come in.
  TextSaver saver(ports);
  saver.saveSelected(outputPath("selected.txt"), {5, 0, 2});
  saver.saveOrigSelected(outputPath("selected-sources.txt"), {6, 5, 1, 0});
  EXPECT_TRUE(matchesExpected("chosen-selected.txt", bytesOf(outputPath("selected.txt"))));
  EXPECT_TRUE(
      matchesExpected("chosen-selected-sources.txt", bytesOf(outputPath("selected-sources.txt"))));
  // Printing takes the same blocks, each followed by an empty line, and keeps the last.
  const QStringList blocks =
      QString::fromUtf8(bytesOf(QUILLERY_SOURCE_DIR "/tests/export/expected/chosen-blocks.txt"))
          .split("\n\nID: ");
  EXPECT_EQ(saver.printText({4, 3}, false), "ID: " + blocks[3] + "\n\nID: " + blocks[2] + "\n\n");
  EXPECT_EQ(saver.rowText, "ID: " + blocks[2]);
}

TEST_F(ExportFormatsTest, TheArchiveFileHoldsTheListedMessagesUnderNewIds) {
  listChosenMessages();
  // Rows removed from the list only are still copied, in the order of retrieval.
  list.deleteFromList({0, 1});
  for (const bool origState : {true, false}) {
    const QString name = origState ? "copy.db" : "without-sources.db";
    const QString path = outputPath(name);
    // The search index of a file that was there before describes other messages.
    ASSERT_TRUE(test::writeFile(path + ".index", "an earlier file's index"));
    EXPECT_EQ(run(F::Archive, name, 1, origState), ExportOutcome::Done);
    EXPECT_FALSE(QFile::exists(path + ".index"));
    QStringList rows;
    for (const char* table : {"email", "tags", "origemail", "attachments"})
      for (const QStringList& row : tableOf(path, QStringLiteral("SELECT * FROM ") + table))
        rows.append(table + QStringLiteral(": ") + row.join(" | "));
    if (origState)
      EXPECT_TRUE(matchesExpected("chosen-archive.txt", (rows.join('\n') + '\n').toUtf8()));
    else
      EXPECT_TRUE(tableOf(path, "SELECT * FROM origemail").isEmpty());
    EXPECT_EQ(dialogs.messages().last(),
              "The data has been exported to the Quillery database file " + path + '.');
    // Stamped as an archive file.
    EXPECT_EQ(files.requested.last().path + files.requested.last().value, path + "QLRY");
  }
  EXPECT_TRUE(noTransactionLeft());
  EXPECT_FALSE(archive.exec("SELECT count(*) FROM mergee.email").ok());  // detached
}

TEST_F(ExportFormatsTest, EachExportAsksForItsFileAndACancelledPanelWritesNothing) {
  listChosenMessages();
  int asked = 0;
  const auto cancelId = [&asked] { return ++asked, std::optional<int>(); };
  exportPath = "earlier";
  MboxExporter(ports, exportPath).exportMbox();
  EXPECT_EQ(exportPath, QString());
  SqlDumpExporter(ports, exportPath).exportSQL(cancelId, true);
  ArchiveExporter(ports, exportPath).exportDb(true);
  TabExporter(ports, exportPath).exportTab(true);
  // A name given, then the id panel cancelled: no file is made.
  dialogs.setNextFileName(outputPath("Mail.sql"));
  SqlDumpExporter(ports, exportPath).exportSQL(cancelId, true);
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(QFile::exists(outputPath("Mail.sql")));
  EXPECT_TRUE(dialogs.alerts.isEmpty());
  QStringList panels;
  for (const platform::SavePanel& p : dialogs.savePanels)
    panels.append(QStringList{p.title, p.prompt, p.nameFieldLabel, p.requiredFileType}.join('|'));
  EXPECT_EQ(panels, (QStringList{"Save Exported Mbox File|Export||mbox",
                                 "Enter Database Name|Export|Database Name:|sql",
                                 "Save Exported Quillery Database File|Export||",
                                 "Save Exported Tab-Delimited File|Export||",
                                 "Enter Database Name|Export|Database Name:|sql"}));
  EXPECT_TRUE(dialogs.savePanels[0].canCreateDirectories);

  // The name typed and the number given: "Mail.sql.old" gets the type and loses its ".sql"s.
  const QString typed = dialogs.savePanels[1].withRequiredFileType(outputPath("Mail.sql.old"));
  dialogs.setNextFileName(typed);
  SqlDumpExporter(ports, exportPath).exportSQL([] { return std::optional<int>(42); }, false);
  EXPECT_TRUE(bytesOf(typed).startsWith("CREATE DATABASE IF NOT EXISTS Mail.old;\nUSE Mail.old;"));
  EXPECT_TRUE(bytesOf(typed).contains("\nINSERT INTO email VALUES(42,"));
}

TEST_F(ExportFormatsTest, SeparatorDatesAndNonLossyEscapesFollowTheirRules) {
  const struct {
    const char* stored;
    const char* separator;
    const char* header;
  } dates[] = {
      {"2007-01-08 14:03:09", "Mon Jan 08 14:03:09 2007", "Mon, 08 Jan 2007 14:03:09 "},
      {"2000-02-29 00:00:00*", "Tue Feb 29 00:00:00 2000", "Tue, 29 Feb 2000 00:00:00 "},
      {"1969-12-31 23:59:59", "Wed Dec 31 23:59:59 1969", "Wed, 31 Dec 1969 23:59:59 "},
      {"not a date", "", ""},
  };
  for (const auto& row : dates) {
    const std::optional<MboxDate> date = MboxDate::parse(QString::fromLatin1(row.stored));
    EXPECT_EQ(date ? date->separatorForm() + '|' + date->headerForm() : "|",
              QByteArray(row.separator) + '|' + row.header);
  }
  const struct {
    QString text;
    QByteArray ascii;
  } escapes[] = {
      {"plain\n", "plain\n"},
      {"C:\\temp", "C:\\\\temp"},
      {"Grüße ÿ", "Gr\\374\\337e \\377"},
      {"€ — 😀", "\\u20ac \\u2014 \\ud83d\\ude00"},
      {QString(QChar(0x80)) + "\\374", "\\200\\\\374"},
  };
  for (const auto& row : escapes) {
    EXPECT_EQ(NonLossyAscii::encode(row.text), row.ascii);
    EXPECT_EQ(NonLossyAscii::decode(row.ascii), row.text);
  }
}

}  // namespace
}  // namespace quillery::exporting
