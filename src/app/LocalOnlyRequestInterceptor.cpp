#include "app/LocalOnlyRequestInterceptor.h"

namespace quillery::app {

bool LocalOnlyRequestInterceptor::isAllowed(const QUrl& url) {
  const QString scheme = url.scheme();
  return scheme == QLatin1String("file") || scheme == QLatin1String("data");
}

void LocalOnlyRequestInterceptor::interceptRequest(QWebEngineUrlRequestInfo& info) {
  if (!isAllowed(info.requestUrl()))
    info.block(true);
}

}  // namespace quillery::app
