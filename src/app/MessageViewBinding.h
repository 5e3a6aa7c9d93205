#pragma once

#include <QObject>
#include <memory>

namespace quillery::search {
class AttachmentOpener;
class MessageView;
class Tagging;
}  // namespace quillery::search

namespace quillery::app {

struct AppContext;

// Binds the message view with its attachment links, the source window, the HTML window, replying
// and the tag panel to the window: each method is the user action of the same name, called by the
// controller's slot of that name. A method gathers what the user set in the window, hands it
// to the feature and lets the window follow the feature's results. A change of the result table's
// selection shows the selected message and loads its tags into the tag panel.
class MessageViewBinding : public QObject {
  Q_OBJECT

 public:
  explicit MessageViewBinding(AppContext& context, QObject* parent = nullptr);
  ~MessageViewBinding() override;

  void viewOrig();
  void replyToEmail();
  void tagEmail();
  void addTags();
  // The selection of the result table changed.
  void tableViewSelectionDidChange();

  search::MessageView& messageView() const { return *view_; }

 private:
  void bindWindows();
  // Loads the tags of the selected message into the tag panel.
  void setTags();

  AppContext& context_;
  std::unique_ptr<search::MessageView> view_;
  std::unique_ptr<search::AttachmentOpener> opener_;
  std::unique_ptr<search::Tagging> tagging_;
};

}  // namespace quillery::app
