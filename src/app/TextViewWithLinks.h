#pragma once

#include <QCursor>
#include <QTextBrowser>

namespace quillery::search {
struct MessageText;
}

namespace quillery::app {

// A read-only text view whose links show the pointing hand made from the application's image
// "fingerCursor" (hot spot at its top-left corner) instead of the desktop's own; elsewhere it
// keeps its usual cursor. A click on a link is reported by anchorClicked with the link's
// file URL; the view never follows a link itself.
class TextViewWithLinks : public QTextBrowser {
  Q_OBJECT

 public:
  explicit TextViewWithLinks(QWidget* parent = nullptr);

  // The pointing hand, made once on first use and then kept.
  static const QCursor& fingerCursor();

  // Shows the message text with its attachment names as links (blue, underlined) to the
  // paths they stand for, and scrolls to the first character.
  void showMessageText(const search::MessageText& message);

 protected:
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  QCursor plainCursor_;
};

}  // namespace quillery::app
