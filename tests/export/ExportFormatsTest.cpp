// Each format's exact text for the chosen messages, kept as expected files beside the tests,
// and the rules of the formats that a handful of rows show best.
#include <functional>

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

using platform::AlertStyle;

class ExportFormatsTest : public ExportFixture {
 protected:
  using Run = std::function<ExportOutcome(ExportPorts&, const QString& path)>;
  struct Format {
    const char* file;  // the expected file
    Run run;
    const char* done;  // the completion alert before the path
  };
  static QList<Format> formats(bool origState = true) {
    QList<Format> out = {
        {"chosen.mbox",
         [](ExportPorts& p, const QString& path) {
           QString exportPath;
           return MboxExporter(p, exportPath).writeMbox(path);
         },
         "The data has been exported to the mbox file "},
        {"chosen.sql",
         [origState](ExportPorts& p, const QString& path) {
           QString exportPath;
           return SqlDumpExporter(p, exportPath).writeScript(path, 1000, origState);
         },
         "The data has been exported to the SQL file "},
        {"chosen.tab",
         [origState](ExportPorts& p, const QString& path) {
           QString exportPath;
           return TabExporter(p, exportPath).writeTab(path, origState);
         },
         "The data has been exported to the tab-delimited text file "},
        {"chosen-blocks.txt",
         [](ExportPorts& p, const QString& path) { return TextSaver(p).saveAll(path); },
         "The email in the list has been saved to the text file "},
        {"chosen-sources.txt",
         [](ExportPorts& p, const QString& path) { return TextSaver(p).saveOrigAll(path); },
         "The raw source email in the list has been saved to the text file "},
        {"chosen-list.txt",
         [](ExportPorts& p, const QString& path) { return TextSaver(p).saveList(path); },
         "This list has been saved to "},
    };
    return out;
  }

  // Runs one format into a file of that name and checks what every completed export
  // leaves: its alert, the panel closed, no transaction, the archive file as it was.
  QByteArray exported(const Format& format) {
    const QByteArray digest = archiveDigest();
    dialogs.alerts.clear();
    const QString path = outputPath(QString::fromLatin1(format.file));
    EXPECT_EQ(format.run(ports, path), ExportOutcome::Done) << format.file;
    EXPECT_EQ(dialogs.messages(), QStringList{QLatin1String(format.done) + path + '.'});
    EXPECT_EQ(dialogs.alerts.value(0).style, AlertStyle::Informational);
    EXPECT_FALSE(progress.isOpen) << format.file;
    EXPECT_TRUE(noTransactionLeft()) << format.file;
    EXPECT_EQ(archiveDigest(), digest) << format.file;
    return bytesOf(path);
  }
};

TEST_F(ExportFormatsTest, EachFormatWritesTheChosenMessagesExactly) {
  listChosenMessages();
  for (const Format& format : formats())
    EXPECT_TRUE(matchesExpected(QString::fromLatin1(format.file), exported(format)));
}

TEST_F(ExportFormatsTest, ADescendingListIsWrittenAndNumberedInTheOrderShown) {
  listChosenMessages();
  showDescending();
  QString exportPath;
  SqlDumpExporter(ports, exportPath).writeScript(outputPath("chosen-descending.sql"), 1, true);
  EXPECT_TRUE(
      matchesExpected("chosen-descending.sql", bytesOf(outputPath("chosen-descending.sql"))));
  // Selected rows are walked in ascending display order, whatever order they come in.
  TextSaver saver(ports);
  saver.saveSelected(outputPath("selected.txt"), {5, 0, 2});
  saver.saveOrigSelected(outputPath("selected-sources.txt"), {6, 5, 1, 0});
  EXPECT_TRUE(matchesExpected("chosen-selected.txt", bytesOf(outputPath("selected.txt"))));
  EXPECT_TRUE(
      matchesExpected("chosen-selected-sources.txt", bytesOf(outputPath("selected-sources.txt"))));
  // Printing takes the same blocks, each followed by an empty line; the message view then
  // shows the last block printed.
  const QStringList blocks = QString::fromUtf8(expected("chosen-blocks.txt")).split("\n\nID: ");
  ASSERT_EQ(blocks.size(), 7);
  EXPECT_EQ(saver.printText({4, 3}, false), "ID: " + blocks[3] + "\n\nID: " + blocks[2] + "\n\n");
  EXPECT_EQ(saver.rowText, "ID: " + blocks[2]);
  EXPECT_EQ(saver.printText({}, false), QString());
}

TEST_F(ExportFormatsTest, WithoutRawSourcesTheScriptAndTheTableLeaveThemOut) {
  listChosenMessages();
  const QList<Format> all = formats(false);
  const QByteArray script = exported(all[1]);
  EXPECT_FALSE(script.contains("INSERT INTO origemail"));
  EXPECT_EQ(script.count("INSERT INTO email"), 7);
  const QList<QByteArray> lines = exported(all[2]).split('\n');
  EXPECT_EQ(lines.first(), "id\tdatetime\tfrom\tto\tsubject\tmailto\tmailbox\tbody\tnumattach");
  for (const QByteArray& line : lines.mid(0, lines.size() - 1))
    EXPECT_EQ(line.count('\t'), 8) << line.constData();
}

TEST_F(ExportFormatsTest, AnEmptyListGivesAnEmptyFileOrTheHeadAloneAndTheAlert) {
  retrieve();
  const QByteArray tabHeader =
      "id\tdatetime\tfrom\tto\tsubject\tmailto\tmailbox\tbody\tnumattach\trawsource\n";
  const QList<QByteArray> contents = {
      "", SqlDumpExporter::scriptHead("chosen").toUtf8(), tabHeader, "", "", ""};
  const QList<Format> all = formats();
  for (qsizetype i = 0; i < all.size(); ++i)
    EXPECT_EQ(exported(all[i]), contents[i]) << all[i].file;
}

TEST_F(ExportFormatsTest, TheArchiveFileHoldsTheListedMessagesUnderNewIds) {
  listChosenMessages();
  // Rows removed from the list only are still copied, in the order of retrieval.
  showDescending();
  list.deleteFromList({0, 1});
  for (const bool origState : {true, false}) {
    const QString path = outputPath(origState ? "copy.db" : "copy-without-sources.db");
    QString exportPath;
    EXPECT_EQ(ArchiveExporter(ports, exportPath).writeArchive(path, origState),
              ExportOutcome::Done);
    QStringList rows;
    for (const char* table : {"email", "tags", "origemail", "attachments"})
      for (const QStringList& row :
           tableOf(path, QStringLiteral("SELECT * FROM %1 ORDER BY rowid").arg(table)))
        rows.append(table + QStringLiteral(": ") + row.join(" | "));
    if (origState)
      EXPECT_TRUE(matchesExpected("chosen-archive.txt", (rows.join('\n') + '\n').toUtf8()));
    else
      EXPECT_TRUE(tableOf(path, "SELECT * FROM origemail").isEmpty());
    EXPECT_EQ(dialogs.messages().last(),
              "The data has been exported to the Quillery database file " + path + '.');
    // The new file carries the creator and type code of an archive file.
    QStringList stamped;
    for (const auto& request : files.requested)
      if (request.path == path)
        stamped.append(request.name + '=' + QString::fromLatin1(request.value));
    EXPECT_EQ(stamped, (QStringList{"user.quillery.creator=QLRY", "user.quillery.type=QLRY"}));
  }
  EXPECT_TRUE(noTransactionLeft());
  // The copy is no longer attached.
  EXPECT_FALSE(archive.exec("SELECT count(*) FROM mergee.email").ok());
}

TEST_F(ExportFormatsTest, EachExportAsksForItsFileAndACancelledPanelWritesNothing) {
  listChosenMessages();
  QString exportPath = "earlier";
  bool askedForId = false;
  const SqlDumpExporter::AskFirstId askFirstId = [&askedForId] {
    askedForId = true;
    return std::optional<int>();
  };
  EXPECT_EQ(MboxExporter(ports, exportPath).exportMbox(), ExportOutcome::Cancelled);
  EXPECT_EQ(exportPath, QString());
  SqlDumpExporter(ports, exportPath).exportSQL(askFirstId, true);
  ArchiveExporter(ports, exportPath).exportDb(true);
  TabExporter(ports, exportPath).exportTab(true);
  EXPECT_FALSE(askedForId);
  // A name given, then the id panel cancelled: no file is made.
  dialogs.setNextFileName(outputPath("Mail.sql"));
  EXPECT_EQ(SqlDumpExporter(ports, exportPath).exportSQL(askFirstId, true),
            ExportOutcome::Cancelled);
  EXPECT_TRUE(askedForId);
  EXPECT_FALSE(QFile::exists(outputPath("Mail.sql")));
  EXPECT_TRUE(dialogs.alerts.isEmpty());

  QStringList panels;
  for (const platform::SavePanel& panel : dialogs.savePanels)
    panels.append(QStringList{panel.title, panel.prompt, panel.nameFieldLabel,
                              panel.requiredFileType, panel.canCreateDirectories ? "+" : "-"}
                      .join('|'));
  EXPECT_EQ(panels, (QStringList{"Save Exported Mbox File|Export||mbox|+",
                                 "Enter Database Name|Export|Database Name:|sql|+",
                                 "Save Exported Quillery Database File|Export|||+",
                                 "Save Exported Tab-Delimited File|Export|||+",
                                 "Enter Database Name|Export|Database Name:|sql|+"}));
  // The starting number and the database name come from the panels.
  dialogs.setNextFileName(outputPath("Mail.sql.old.sql"));
  SqlDumpExporter(ports, exportPath).exportSQL([] { return std::optional<int>(42); }, false);
  EXPECT_TRUE(bytesOf(outputPath("Mail.sql.old.sql"))
                  .startsWith("CREATE DATABASE IF NOT EXISTS Mail.old;\nUSE Mail.old;\n"));
  EXPECT_TRUE(bytesOf(outputPath("Mail.sql.old.sql")).contains("INSERT INTO email VALUES(42,"));
}

TEST_F(ExportFormatsTest, NamesDatesAndEscapesFollowTheirRules) {
  const platform::SavePanel sql{{}, {}, {}, true, {}, {}, "sql"};
  EXPECT_EQ(sql.withRequiredFileType("/x/Mail.sql.old"), "/x/Mail.sql.old.sql");
  EXPECT_EQ(sql.withRequiredFileType("/x/Mail.sql"), "/x/Mail.sql");
  EXPECT_EQ(SqlDumpExporter::databaseName("/x/Mail2006.sql"), "Mail2006");
  EXPECT_EQ(SqlDumpExporter::databaseName("/x.sql/Mail.sql.old.sql"), "Mail.old");

  const struct {
    const char* stored;
    const char* separator;
    const char* header;
  } dates[] = {
      {"2007-01-08 14:03:09", "Mon Jan 08 14:03:09 2007", "Mon, 08 Jan 2007 14:03:09 "},
      {"2000-02-29 00:00:00*", "Tue Feb 29 00:00:00 2000", "Tue, 29 Feb 2000 00:00:00 "},
      {"1969-12-31 23:59:59", "Wed Dec 31 23:59:59 1969", "Wed, 31 Dec 1969 23:59:59 "},
      {"2038-01-19 03:14:08", "Tue Jan 19 03:14:08 2038", "Tue, 19 Jan 2038 03:14:08 "},
      {"not a date", "", ""},
      {"", "", ""},
  };
  for (const auto& row : dates) {
    const std::optional<MboxDate> date = MboxDate::parse(QString::fromLatin1(row.stored));
    EXPECT_EQ(date ? date->separatorForm() : "", row.separator) << row.stored;
    EXPECT_EQ(date ? date->headerForm() : "", row.header) << row.stored;
  }

  const struct {
    QString text;
    QByteArray ascii;
  } escapes[] = {
      {"plain text\n", "plain text\n"},
      {"C:\\temp", "C:\\\\temp"},
      {"Grüße ÿ", "Gr\\374\\337e \\377"},
      {"€ — ☃", "\\u20ac \\u2014 \\u2603"},
      {"😀", "\\ud83d\\ude00"},
      {QString(QChar(0x80)) + "\\374", "\\200\\\\374"},
  };
  for (const auto& row : escapes) {
    EXPECT_EQ(NonLossyAscii::encode(row.text), row.ascii) << row.ascii.constData();
    EXPECT_EQ(NonLossyAscii::decode(row.ascii), row.text) << row.ascii.constData();
  }
}

}  // namespace
}  // namespace quillery::exporting
