#pragma once

#include <QWidget>

class QVBoxLayout;
class QWebEngineProfile;
class QWebEngineView;

namespace quillery::app {

class LocalOnlyRequestInterceptor;

// The window that shows an HTML body or attachment. Its web view runs without JavaScript, on a
// private profile that keeps nothing on disk, and loads nothing but local files: every other
// request is refused. The view is made on first use, because the web engine starts processes
// of its own that a session without HTML should not pay for.
class HtmlWindow : public QWidget {
  Q_OBJECT

 public:
  explicit HtmlWindow(QWidget* parent = nullptr);
  ~HtmlWindow() override;

  QWebEngineView* myHtmlWebView();
  // Loads the local HTML file at path and brings the window to the front.
  void showFile(const QString& path);
  // Shows the bytes of the HTML file at path as UTF-8 text, with the file's own URL as the
  // base for what the page names (local files only load), and brings the window to the
  // front. A page that the engine cannot take as content (over 2 MB) is loaded from the file.
  void showHtmlFile(const QString& path);

 private:
  QVBoxLayout* layout_;
  QWebEngineProfile* profile_ = nullptr;
  LocalOnlyRequestInterceptor* interceptor_ = nullptr;
  QWebEngineView* view_ = nullptr;
};

}  // namespace quillery::app
