#pragma once

#include <QObject>

namespace quillery::app {

struct AppContext;

// Binds the message view with its attachment links, the source window, the HTML window, replying
// and the tag panel to the window: each method is the user action of the same name, called by the
// controller's slot of that name. A method gathers what the user set in the window, hands it
// to the feature and lets the window follow the feature's results.
class MessageViewBinding : public QObject {
  Q_OBJECT

 public:
  explicit MessageViewBinding(AppContext& context, QObject* parent = nullptr);

  void viewOrig();
  void replyToEmail();
  void tagEmail();
  void addTags();

 private:
  AppContext& context_;
};

}  // namespace quillery::app
