#include "app/HtmlWindow.h"

#include <QFile>
#include <QUrl>
#include <QVBoxLayout>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineSettings>
#include <QWebEngineView>

#include "app/LocalOnlyRequestInterceptor.h"

namespace quillery::app {

HtmlWindow::HtmlWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), layout_(new QVBoxLayout(this)) {
  setObjectName(QStringLiteral("myHtmlWindow"));
  setWindowTitle(tr("HTML View"));
  layout_->setContentsMargins(0, 0, 0, 0);
  resize(800, 600);
}

HtmlWindow::~HtmlWindow() {
  // The page must go before its profile, or the engine is left with a dangling page.
  delete view_;
  delete profile_;
}

QWebEngineView* HtmlWindow::myHtmlWebView() {
  if (view_ != nullptr)
    return view_;
  profile_ = new QWebEngineProfile;  // off the record: no cookies or cache on disk
  interceptor_ = new LocalOnlyRequestInterceptor(profile_);
  profile_->setUrlRequestInterceptor(interceptor_);
  QWebEngineSettings* settings = profile_->settings();
  settings->setAttribute(QWebEngineSettings::JavascriptEnabled, false);
  settings->setAttribute(QWebEngineSettings::JavascriptCanOpenWindows, false);
  settings->setAttribute(QWebEngineSettings::LocalContentCanAccessRemoteUrls, false);
  settings->setAttribute(QWebEngineSettings::PluginsEnabled, false);
  settings->setAttribute(QWebEngineSettings::AutoLoadIconsForPage, false);

  view_ = new QWebEngineView(this);
  view_->setObjectName(QStringLiteral("myHtmlWebView"));
  view_->setPage(new QWebEnginePage(profile_, view_));
  layout_->addWidget(view_);
  return view_;
}

void HtmlWindow::showFile(const QString& path) {
  myHtmlWebView()->setUrl(QUrl::fromLocalFile(path));
  show();
  raise();
  activateWindow();
}

}  // namespace quillery::app

namespace quillery::app {

void HtmlWindow::showHtmlFile(const QString& path) {
  // Content handed over directly travels as a data URL, which the engine limits to 2 MB.
  constexpr qint64 kContentLimit = 2 * 1024 * 1024 - 64 * 1024;
  QFile file(path);
  const QUrl base = QUrl::fromLocalFile(path);
  if (file.size() > kContentLimit || !file.open(QIODevice::ReadOnly)) {
    showFile(path);
    return;
  }
  myHtmlWebView()->setContent(file.readAll(), QStringLiteral("text/html;charset=utf-8"), base);
  show();
  raise();
  activateWindow();
}

}  // namespace quillery::app
