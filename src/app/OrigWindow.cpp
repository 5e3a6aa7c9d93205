#include "app/OrigWindow.h"

#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace quillery::app {

OrigWindow::OrigWindow(QWidget* parent)
    : QWidget(parent, Qt::Window), origTextView(new QPlainTextEdit(this)) {
  setObjectName(QStringLiteral("origWindow"));
  setWindowTitle(tr("Message Source"));
  origTextView->setReadOnly(true);
  origTextView->setLineWrapMode(QPlainTextEdit::NoWrap);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(origTextView);
  resize(720, 560);
}

}  // namespace quillery::app
