#pragma once

#include <QList>
#include <QStringList>
#include <QUrl>

#include "platform/Pasteboard.h"
#include "platform/Workspace.h"

namespace quillery::test {

// A workspace that records what it was asked to open and answers as told.
class FakeWorkspace : public platform::Workspace {
 public:
  bool openFile(const QString& path) override {
    openedFiles.append(path);
    return opens;
  }
  bool openUrl(const QUrl& url) override {
    openedUrls.append(url);
    return opens;
  }
  bool opens = true;
  QStringList openedFiles;
  QList<QUrl> openedUrls;
};

// A clipboard of the test's own.
class FakePasteboard : public platform::Pasteboard {
 public:
  void setText(const QString& text) override { text_ = text; }
  QString text() const override { return text_; }

 private:
  QString text_;
};

}  // namespace quillery::test
