// The exports, text saves and printing from the window, offscreen, over a real archive file:
// printing goes into a PDF file that pdftotext reads back.
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPrinter>
#include <QProcess>
#include <QRegularExpression>
#include <QTableView>
#include <QTextBrowser>
#include <QTimer>

#include "AppFixture.h"
#include "app/IdPanel.h"
#include "app/StorePanel.h"
#include "archive/Statements.h"
#include "search/ResultList.h"

namespace quillery::app {
namespace {

class ExportWindowsTest : public AppFixture {
 protected:
  // The application with three messages listed, the newest first.
  QuilleryController& listed() {
    QuilleryController& app = start();
    const QString path = dir.filePath("archive");
    makeArchive(path, {{"2020-01-01 10:00:00", "First subject"},
                       {"2020-01-02 10:00:00", "Second subject", "Work"},
                       {"2020-01-03 10:00:00", "Third subject"}});
    app.archive.openDB(path);
    app.archive.sqlText = archive::listAllStatement();
    app.resultList().retrieve(path);
    app.resultList().sortDescending = true;
    return app;
  }
  static void select(QuilleryController& app, const QList<int>& rows) {
    QTableView* table = app.storePanel->storeTableView;
    table->clearSelection();
    for (const int row : rows)
      table->selectionModel()->select(table->model()->index(row, 0),
                                      QItemSelectionModel::Select | QItemSelectionModel::Rows);
  }
  // Prints into a PDF file and gives back its text as pdftotext reads it, without the empty
  // lines, page breaks and page numbers that the page layout adds.
  QString printed(const std::function<void()>& print) {
    const QString pdf = dir.filePath("printed.pdf");
    QFile::remove(pdf);
    dialogs.printPanel = [pdf](QPrinter& printer) {
      printer.setOutputFormat(QPrinter::PdfFormat);
      printer.setOutputFileName(pdf);
      return true;
    };
    print();
    QProcess pdftotext;
    pdftotext.start("pdftotext", {"-layout", pdf, "-"});
    EXPECT_TRUE(pdftotext.waitForFinished(60000) && pdftotext.exitCode() == 0)
        << "pdftotext could not read " << pdf.toStdString();
    QStringList lines;
    for (const QString& line : QString::fromUtf8(pdftotext.readAllStandardOutput()).split('\n'))
      if (!line.trimmed().isEmpty() &&
          !QRegularExpression("^\\d+$").match(line.trimmed()).hasMatch())
        lines.append(line.trimmed());
    return lines.join('\n');
  }
};

QString block(int id, const QString& date, const QString& subject) {
  return QStringLiteral(
             "ID: %1\nDATE: %2\nFROM: sender%1@example.org\nTO: me@example.com\n"
             "SUBJECT: %3\nMAILBOX: INBOX\nbody")
      .arg(id)
      .arg(date, subject);
}

TEST_F(ExportWindowsTest, PrintingPutsTheTextBlocksOnPaperAndLeavesTheLastInTheView) {
  QuilleryController& app = listed();
  EXPECT_EQ(printed([&] { app.printAll(); }),
            block(3, "2020-01-03 10:00:00", "Third subject") + '\n' +
                block(2, "2020-01-02 10:00:00", "Second subject") + '\n' +
                block(1, "2020-01-01 10:00:00", "First subject"));
  EXPECT_EQ(app.storePanel->bodyTextView->toPlainText(),
            "ID: 1\nDATE: 2020-01-01 10:00:00\nFROM: sender1@example.org\nTO: me@example.com\n"
            "SUBJECT: First subject\nMAILBOX: INBOX\n\nbody");

  // The selection in the order shown; a cancelled print panel prints nothing.
  select(app, {1});
  EXPECT_EQ(printed([&] { app.printSelected(); }),
            block(2, "2020-01-02 10:00:00", "Second subject"));
  dialogs.printPanel = nullptr;
  select(app, {0});
  app.printSelected();
  EXPECT_EQ(dialogs.printPanels, 3);
  EXPECT_TRUE(app.storePanel->bodyTextView->toPlainText().startsWith("ID: 3\n"));
  EXPECT_TRUE(dialogs.alerts.isEmpty());
}

TEST_F(ExportWindowsTest, ExportsAskForTheirFilesAndTheIdPanelNumbersTheScript) {
  QuilleryController& app = listed();
  // The id panel stays up without a number, then numbers from the one given.
  const QString script = dir.filePath("Mail.sql");
  dialogs.setNextFileName(script);
  QTimer::singleShot(0, [&app] {
    app.IdPanel->idTextField->clear();
    app.gotID();
    app.IdPanel->idTextField->setText("1000");
    app.gotID();
  });
  app.exportSQL();
  EXPECT_TRUE(test::readFile(script).contains(
      "INSERT INTO email VALUES(1000,'sender3@example.org','me@example.com','Third subject'"));
  // Cancelled, the panel leaves the file as it was.
  dialogs.setNextFileName(script);
  QTimer::singleShot(0, [&app] { app.cancelID(); });
  app.exportSQL();
  EXPECT_TRUE(test::readFile(script).contains("VALUES(1000,"));

  // The text saves ask through the shared save prompt; the selection goes in the order shown.
  select(app, {2, 0});
  dialogs.setNextFileName(dir.filePath("list.txt"));
  app.saveList();
  dialogs.setNextFileName(dir.filePath("selected.txt"));
  app.saveSelected();
  EXPECT_EQ(test::readFile(dir.filePath("list.txt")).count('\n'), 3);
  const QString selected = test::readFile(dir.filePath("selected.txt"));
  EXPECT_TRUE(selected.startsWith("ID: 3\n") && selected.contains("\n\nID: 1\n"))
      << selected.toStdString();
  EXPECT_EQ(selected.count("ID: "), 2);
  EXPECT_EQ(dialogs.alerts.size(), 3);
}

}  // namespace
}  // namespace quillery::app
