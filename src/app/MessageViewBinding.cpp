#include "app/MessageViewBinding.h"

#include "app/AppContext.h"

namespace quillery::app {

MessageViewBinding::MessageViewBinding(AppContext& context, QObject* parent)
    : QObject(parent), context_(context) {}

void MessageViewBinding::viewOrig() {
  context_.notYetAvailable("viewOrig");
}

void MessageViewBinding::replyToEmail() {
  context_.notYetAvailable("replyToEmail");
}

void MessageViewBinding::tagEmail() {
  context_.notYetAvailable("tagEmail");
}

void MessageViewBinding::addTags() {
  context_.notYetAvailable("addTags");
}

}  // namespace quillery::app
