#include "app/MessageViewBinding.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QUrl>

#include "app/AppContext.h"
#include "app/HtmlWindow.h"
#include "app/ListFont.h"
#include "app/OrigWindow.h"
#include "app/ProgressPanel.h"
#include "app/SearchPanel.h"
#include "app/StorePanel.h"
#include "app/TagPanel.h"
#include "prefs/StoredPreferences.h"
#include "search/AttachmentOpener.h"
#include "search/MessageView.h"
#include "search/Tagging.h"

namespace quillery::app {

MessageViewBinding::MessageViewBinding(AppContext& context, QObject* parent)
    : QObject(parent),
      context_(context),
      view_(std::make_unique<search::MessageView>(context.archive, context.resultList,
                                                  context.ports.dialogs, context.ports.workspace,
                                                  context.ports.pasteboard)),
      opener_(std::make_unique<search::AttachmentOpener>(
          context.archive, context.ports.dialogs, context.ProgressPanel, context.ports.files,
          context.ports.workspace, qEnvironmentVariable("HOME"))),
      tagging_(std::make_unique<search::Tagging>(context.archive, context.resultList,
                                                 context.categories, context.ports.dialogs,
                                                 context.ProgressPanel)) {
  bindWindows();
}

MessageViewBinding::~MessageViewBinding() = default;

void MessageViewBinding::bindWindows() {
  StorePanel& panel = context_.storePanel;
  connect(panel.storeTableView, &ResultTableView::selectedRowsChanged, this,
          &MessageViewBinding::tableViewSelectionDidChange);
  connect(view_.get(), &search::MessageView::bodyTextChanged, panel.bodyTextView,
          &TextViewWithLinks::showMessageText);
  connect(panel.bodyTextView, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) {
    opener_->textViewClickedOnLink(link.toLocalFile(), view_->attachmentIDForView);
  });
  connect(opener_.get(), &search::AttachmentOpener::htmlAttachmentShown, &context_.myHtmlWindow,
          &HtmlWindow::showHtmlFile);
  connect(view_.get(), &search::MessageView::origShown, this, [this](const QString& source) {
    OrigWindow& window = context_.origWindow;
    window.origTextView->setFont(ListFont::toFont(context_.prefs.currentFont));
    window.origTextView->setPlainText(source);
    window.show();
    window.raise();
    window.activateWindow();
  });
  connect(tagging_.get(), &search::Tagging::categoryAdded, this, [this](const QString& category) {
    context_.retrievePanel.searchCatButton->addItem(category);
    context_.tagPanel.setCatButton->addItem(category);
  });
}

void MessageViewBinding::tableViewSelectionDidChange() {
  const int row = context_.storePanel.selectedDisplayRow();
  if (row < 0) {
    view_->tableViewSelectionDidChange(row);
    return;
  }
  view_->setTempDir(context_.tempDir);
  context_.storePanel.bodyTextView->setFont(ListFont::toFont(context_.prefs.currentFont));
  view_->tableViewSelectionDidChange(row);
  setTags();
}

void MessageViewBinding::setTags() {
  if (const auto values = tagging_->setTags(context_.storePanel.selectedDisplayRow()))
    context_.tagPanel.setValues(*values);
}

void MessageViewBinding::viewOrig() {
  view_->viewOrig(context_.storePanel.selectedDisplayRow());
}

void MessageViewBinding::replyToEmail() {
  view_->replyToEmail(context_.storePanel.selectedDisplayRow());
}

void MessageViewBinding::tagEmail() {
  setTags();
  context_.tagPanel.show();
  context_.tagPanel.raise();
  context_.tagPanel.activateWindow();
}

void MessageViewBinding::addTags() {
  tagging_->addTags(context_.tagPanel.values(), context_.storePanel.selectedDisplayRows());
}

}  // namespace quillery::app
