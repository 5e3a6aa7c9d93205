#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QUrl>
#include <QWebEngineView>

#include "app/HtmlWindow.h"
#include "archive/TestFiles.h"

// The web engine's own code (Chromium inside Qt WebEngine, not built with the sanitizer)
// frees some objects through a base of another size, which AddressSanitizer would stop this
// program for. Only that check is turned off (leaks are not checked in CI either), and only
// in this test program.
extern "C" __attribute__((visibility("default"), used)) const char* __asan_default_options() {
  return "new_delete_type_mismatch=0:detect_leaks=0";
}

namespace quillery::app {
namespace {

// A message page that would run a script and fetch a style sheet and an image from a server
// on this machine, which counts every connection.
class HtmlWindowTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server.listen(QHostAddress::LocalHost));
    QObject::connect(&server, &QTcpServer::newConnection, [this] {
      while (QTcpSocket* socket = server.nextPendingConnection()) {
        ++connections;
        socket->write("HTTP/1.0 404 Not Found\r\nContent-Length: 0\r\n\r\n");
        socket->disconnectFromHost();
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
      }
    });
    const QString remote = QStringLiteral("http://127.0.0.1:%1/").arg(server.serverPort());
    html = QStringLiteral(
               "<html><head><title>as written</title>"
               "<link rel=stylesheet href=\"%1style.css\"></head><body>"
               "<p>Hello</p><img src=\"%1pixel.png\">"
               "<script>document.title = 'script ran';</script>"
               "</body></html>")
               .arg(remote);
    ASSERT_TRUE(test::writeFile(page(), html.toUtf8()));
  }

  // Loads by the given call and waits until the page and what it fetches have loaded.
  template <typename Load>
  static bool load(QWebEngineView* view, Load&& start) {
    QSignalSpy loaded(view, &QWebEngineView::loadFinished);
    start();
    return loaded.wait(60000) && loaded.first().first().toBool();
  }
  QString page() const { return dir.filePath(QStringLiteral("message.html")); }

  QTemporaryDir dir;
  QString html;
  QTcpServer server;
  int connections = 0;
};

TEST_F(HtmlWindowTest, TheHtmlWindowShowsPagesWithoutScriptsOrRemoteRequests) {
  HtmlWindow window;
  QWebEngineView* view = window.myHtmlWebView();
  EXPECT_EQ(view, window.myHtmlWebView());
  ASSERT_TRUE(load(view, [&] { window.showFile(page()); }));
  EXPECT_TRUE(window.isVisible());
  EXPECT_EQ(view->title(), "as written");
  ASSERT_TRUE(load(view, [&] { view->setHtml(html); }));
  EXPECT_EQ(view->title(), "as written");
  EXPECT_EQ(connections, 0);

  // The control: the same page reaches the server from a view with default settings.
  QWebEngineView ordinary;
  ASSERT_TRUE(load(&ordinary, [&] { ordinary.setHtml(html); }));
  EXPECT_GT(connections, 0);
  EXPECT_EQ(ordinary.title(), "script ran");
}

}  // namespace
}  // namespace quillery::app
