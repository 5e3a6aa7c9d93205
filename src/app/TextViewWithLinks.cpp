#include "app/TextViewWithLinks.h"

#include <QMouseEvent>
#include <QPixmap>
#include <QScrollBar>
#include <QTextCharFormat>
#include <QTextCursor>
#include <QUrl>

#include "search/MessageText.h"

namespace quillery::app {

TextViewWithLinks::TextViewWithLinks(QWidget* parent) : QTextBrowser(parent) {
  setOpenLinks(false);
  setOpenExternalLinks(false);
  viewport()->setMouseTracking(true);
  plainCursor_ = viewport()->cursor();
}

const QCursor& TextViewWithLinks::fingerCursor() {
  static const QCursor cursor(QPixmap(QStringLiteral(":/images/fingerCursor.png")), 0, 0);
  return cursor;
}

void TextViewWithLinks::showMessageText(const search::MessageText& message) {
  setPlainText(message.text);
  QTextCursor cursor(document());
  for (const search::AttachmentLinkRange& link : message.links) {
    cursor.setPosition(link.start);
    cursor.setPosition(link.start + link.length, QTextCursor::KeepAnchor);
    QTextCharFormat format;
    format.setAnchor(true);
    format.setAnchorHref(QUrl::fromLocalFile(link.path).toString(QUrl::FullyEncoded));
    format.setForeground(Qt::blue);
    format.setFontUnderline(true);
    cursor.mergeCharFormat(format);
  }
  verticalScrollBar()->setValue(0);
}

void TextViewWithLinks::mouseMoveEvent(QMouseEvent* event) {
  QTextBrowser::mouseMoveEvent(event);
  // The browser sets its own hand over links; this runs after it on every move.
  const bool overLink = !anchorAt(event->position().toPoint()).isEmpty();
  viewport()->setCursor(overLink ? fingerCursor() : plainCursor_);
}

}  // namespace quillery::app
