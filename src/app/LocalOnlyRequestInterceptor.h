#pragma once

#include <QWebEngineUrlRequestInterceptor>

namespace quillery::app {

// Refuses every request of the HTML view that would leave the machine: only local files (and
// data: URLs inside the page, which fetch nothing) load. So a message's remote images,
// tracking pixels and style sheets are never fetched.
class LocalOnlyRequestInterceptor : public QWebEngineUrlRequestInterceptor {
  Q_OBJECT

 public:
  using QWebEngineUrlRequestInterceptor::QWebEngineUrlRequestInterceptor;

  static bool isAllowed(const QUrl& url);
  void interceptRequest(QWebEngineUrlRequestInfo& info) override;
};

}  // namespace quillery::app
