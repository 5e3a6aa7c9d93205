#pragma once

#include <QWidget>

class QPlainTextEdit;

namespace quillery::app {

// The window that shows a message's source as it was received.
class OrigWindow : public QWidget {
  Q_OBJECT

 public:
  explicit OrigWindow(QWidget* parent = nullptr);

  QPlainTextEdit* origTextView;
};

}  // namespace quillery::app
