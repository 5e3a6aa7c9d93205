// The search panel, the message view with its links, the tag panel, deletion and the SQL panel
// in the real windows, offscreen, over a real archive file; the fake dialogs answer.
#include <QAction>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <QTextBlock>
#include <QWebEngineView>

#include "AppFixture.h"
#include "app/HtmlWindow.h"
#include "app/MainWindow.h"
#include "app/OrigWindow.h"
#include "app/SearchPanel.h"
#include "app/SqlPanel.h"
#include "app/StorePanel.h"
#include "app/TagPanel.h"

namespace quillery::app {
namespace {

class SearchWindowsTest : public AppFixture {
 protected:
  void SetUp() override {
    AppFixture::SetUp();
    makeArchive(archivePath(), {{"2021-03-04 05:06:07", "Quarterly report"},
                                {"2021-03-05 05:06:07", "Lunch", "Home"},
                                {"2021-03-06 05:06:07", "Annual report"}});
    // The third message lists a PDF and a page that would run a script and fetch an image
    // from a server here.
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QObject::connect(&server, &QTcpServer::newConnection, [this] {
      while (QTcpSocket* socket = server.nextPendingConnection()) {
        ++connections;
        socket->disconnectFromHost();
      }
    });
    const QString page = QStringLiteral(
                             "<html><head><title>page</title></head><body><img "
                             "src=\"http://127.0.0.1:%1/x.png\"><script>document.title = "
                             "\"script ran\";</script></body></html>")
                             .arg(server.serverPort());
    ASSERT_EQ(test::execOn(archivePath(),
                           "UPDATE email SET body_fld='Figures.\n\nATTACHMENTS:\nr.pdf\npage.html' "
                           "WHERE id=3; INSERT INTO attachments VALUES(3,'application/pdf',"
                           "'r.pdf',1,'JVBERi0=');INSERT INTO attachments VALUES(3,'text/html',"
                           "'page.html',0,'" +
                               page + "');INSERT INTO origemail VALUES(3,'From: me\n\nFigures.')"),
              QString());
  }
  QString archivePath() const { return dir.filePath(QStringLiteral("mail.db")); }
  QuilleryController& startOnArchive() {
    QuilleryController& app = start();
    app.applicationOpenFile(archivePath());
    return app;
  }
  // The middle of the text's first occurrence of word in the message view, in the viewport.
  static QPoint pointOf(QuilleryController& app, const QString& word) {
    TextViewWithLinks* view = app.storePanel->bodyTextView;
    QTextCursor cursor(view->document());
    cursor.setPosition(int(view->toPlainText().indexOf(word)) + 1);
    return view->cursorRect(cursor).center();
  }
  static void moveMouse(QWidget* viewport, QPoint at) {
    QMouseEvent move(QEvent::MouseMove, at, viewport->mapToGlobal(at), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(viewport, &move);
  }

  QTcpServer server;
  int connections = 0;
};

TEST_F(SearchWindowsTest, ASearchListsItsHitsAndARowShowsTheMessageWithItsLinks) {
  QuilleryController& app = startOnArchive();
  QAction* search = app.menuActions.value("retrieveFromDB");
  EXPECT_EQ(search->shortcut(), QKeySequence(QStringLiteral("Ctrl+F")));
  search->trigger();
  EXPECT_TRUE(app.retrievePanel->isVisible());
  EXPECT_EQ(app.retrievePanel->windowTitle(), "Search email in " + archivePath());
  EXPECT_EQ(app.retrievePanel->toAndButton->currentText() +
                app.retrievePanel->subjAndButton->currentText(),
            "ORAND");

  app.retrievePanel->keyWords[2]->setText(QStringLiteral("report"));
  QTest::mouseClick(app.retrievePanel->searchButton, Qt::LeftButton);
  EXPECT_EQ(listColumn(app, "emailSubject"), (QStringList{"Quarterly report", "Annual report"}));
  EXPECT_EQ(app.storePanel->listCountTextField->text(), "2 emails in this list.");
  EXPECT_EQ(app.storePanel->dbCountTextField->text(), "3 emails in the database.");

  app.storePanel->storeTableView->selectRow(1);
  TextViewWithLinks* view = app.storePanel->bodyTextView;
  EXPECT_TRUE(view->toPlainText().endsWith("Figures.\n\nATTACHMENTS:\n\nr.pdf\n\n\npage.html\n\n"))
      << view->toPlainText().toStdString();
  QTextCursor cursor(view->document());
  cursor.setPosition(int(view->toPlainText().indexOf("r.pdf")) + 1);
  EXPECT_EQ(QUrl(cursor.charFormat().anchorHref()).toLocalFile(),
            app.tempDir + QStringLiteral("/0-QL-r.pdf"));
  EXPECT_EQ(cursor.charFormat().foreground().color(), QColor(Qt::blue));
  EXPECT_TRUE(cursor.charFormat().fontUnderline());

  // Over a link the pointing hand of the application's image; elsewhere the usual cursor.
  app.msWindow->show();
  moveMouse(view->viewport(), pointOf(app, "r.pdf"));
  const QCursor over = view->viewport()->cursor();
  EXPECT_EQ(over.shape(), Qt::BitmapCursor);
  EXPECT_EQ(over.hotSpot(), QPoint(0, 0));
  EXPECT_EQ(
      over.pixmap().toImage().convertToFormat(QImage::Format_ARGB32),
      QImage(QStringLiteral(":/images/fingerCursor.png")).convertToFormat(QImage::Format_ARGB32));
  moveMouse(view->viewport(), pointOf(app, "Figures"));
  EXPECT_NE(view->viewport()->cursor().shape(), Qt::BitmapCursor);

  // A click on the PDF offers launch or save; "Cancel" leaves the file in the run's folder.
  dialogs.setNextAnswer(1);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, pointOf(app, "r.pdf"));
  ASSERT_FALSE(dialogs.alerts.isEmpty());
  EXPECT_EQ(dialogs.alerts.last().title, "What do you want to do with this attachment?");
  EXPECT_EQ(test::readFile(app.tempDir + QStringLiteral("/0-QL-r.pdf")), "%PDF-");

  app.menuActions.value("viewOrig")->trigger();
  EXPECT_TRUE(app.origWindow->isVisible());
  EXPECT_EQ(app.origWindow->origTextView->toPlainText(), "From: me\n\nFigures.");
}

TEST_F(SearchWindowsTest, AnHtmlAttachmentIsShownFromLocalBytesWithoutScriptsOrRequestsLeaving) {
  QuilleryController& app = startOnArchive();
  app.menuActions.value("browseDatabase")->trigger();
  ASSERT_EQ(listColumn(app, "emailID").size(), 3);
  app.storePanel->storeTableView->selectRow(2);
  QWebEngineView* web = app.myHtmlWindow->myHtmlWebView();
  QSignalSpy loaded(web, &QWebEngineView::loadFinished);
  Q_EMIT app.storePanel->bodyTextView->anchorClicked(
      QUrl::fromLocalFile(app.tempDir + QStringLiteral("/1-QL-page.html")));
  ASSERT_TRUE(loaded.wait(60000));
  EXPECT_TRUE(app.myHtmlWindow->isVisible());
  EXPECT_EQ(web->title(), "page");
  QTest::qWait(300);  // time for any request the page would still make
  EXPECT_EQ(connections, 0);

  // The control: the same bytes in a view with default settings reach the server.
  QWebEngineView ordinary;
  QSignalSpy ordinaryLoaded(&ordinary, &QWebEngineView::loadFinished);
  ordinary.setHtml(test::readFile(app.tempDir + QStringLiteral("/1-QL-page.html")));
  ASSERT_TRUE(ordinaryLoaded.wait(60000));
  EXPECT_GT(connections, 0);
  EXPECT_EQ(ordinary.title(), "script ran");
}

TEST_F(SearchWindowsTest, TagsSqlAndDeletionWorkFromTheirPanels) {
  QuilleryController& app = startOnArchive();
  app.menuActions.value("browseDatabase")->trigger();
  app.storePanel->storeTableView->selectRow(1);
  app.menuActions.value("tagEmail")->trigger();
  EXPECT_TRUE(app.tagPanel->isVisible());
  EXPECT_EQ(app.tagPanel->catTextField->text(), "Home");
  app.tagPanel->catTextField->setText(QStringLiteral("Travel"));
  app.tagPanel->priorityButton->setCurrentText(QStringLiteral("High"));
  QTest::mouseClick(app.tagPanel->setTagsButton, Qt::LeftButton);
  EXPECT_EQ(dialogs.alerts.last().message, "1 emails have been tagged.");
  EXPECT_EQ(listColumn(app, "emailDate")[1], "2021-03-05 05:06:07*");
  EXPECT_GE(app.retrievePanel->searchCatButton->findText("Travel"), 0);
  EXPECT_GE(app.tagPanel->setCatButton->findText("Travel"), 0);
  EXPECT_EQ(test::rowsOf(archivePath(), "SELECT cat_fld, priority_fld FROM tags WHERE id=2"),
            QStringList{"Travel|2"});

  // The SQL panel: a condition that is not SQL is reported and the panel can run another.
  app.menuActions.value("editSqlString")->trigger();
  EXPECT_TRUE(app.SQLPanel->isVisible());
  EXPECT_TRUE(app.SQLPanel->beginSqlTextField->toPlainText().startsWith("\n\nSELECT email.id,"));
  app.SQLPanel->whereTextField->setPlainText(QStringLiteral("WHERE subj_fld LIKE \"%report"));
  QTest::mouseClick(app.SQLPanel->runButton, Qt::LeftButton);
  EXPECT_TRUE(dialogs.alerts.last().message.startsWith("SQL Error: "));
  app.SQLPanel->whereTextField->setPlainText(QStringLiteral("WHERE subj_fld LIKE '%report'"));
  app.menuActions.value("editSqlString")->trigger();
  app.SQLPanel->whereTextField->setPlainText(QStringLiteral("WHERE subj_fld LIKE '%report'"));
  QTest::mouseClick(app.SQLPanel->runButton, Qt::LeftButton);
  EXPECT_EQ(listColumn(app, "emailSubject"), (QStringList{"Quarterly report", "Annual report"}));
  app.menuActions.value("showSchema")->trigger();
  EXPECT_EQ(dialogs.alerts.last().title, "Database Schema");

  // Deleting the selected row asks, then removes it from the file and the list.
  app.storePanel->storeTableView->selectRow(0);
  app.menuActions.value("deleteSelected")->trigger();
  EXPECT_EQ(dialogs.alerts.last().title, "Delete this email from database");
  EXPECT_EQ(listColumn(app, "emailSubject"), QStringList{"Annual report"});
  EXPECT_EQ(test::rowsOf(archivePath(), "SELECT id FROM email"), (QStringList{"2", "3"}));
}

}  // namespace
}  // namespace quillery::app
