// The message view's text and links, the attachment links clicked, the raw source and the
// reply, and the Base64 decoder behind the attachments.
#include <QFile>
#include <QSignalSpy>

#include "SearchFixture.h"
#include "search/Base64Decoder.h"

namespace quillery::search {
namespace {

using platform::AlertStyle;

QByteArray decoded(const QByteArray& input) {
  QTemporaryDir dir;
  const QString in = dir.filePath("in"), out = dir.filePath("out");
  test::writeFile(in, input);
  std::FILE* inFile = std::fopen(QFile::encodeName(in).constData(), "rb");
  std::FILE* outFile = std::fopen(QFile::encodeName(out).constData(), "wb");
  EXPECT_NE(Base64Decoder::decodeBase64File(inFile, outFile), 0);
  std::fclose(inFile);
  std::fclose(outFile);
  QFile file(out);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

TEST(Base64DecoderTest, GroupsCutByTheEndGiveOneByteLessAndPaddingNeverGivesBytes) {
  QByteArray large;
  for (int i = 0; i < 5000; ++i)
    large.append(char(i * 7 + i / 256));
  QByteArray wrapped = large.toBase64();
  for (qsizetype at = 76; at < wrapped.size(); at += 78)
    wrapped.insert(at, "\r\n");
  const struct {
    QByteArray in, out;
  } rows[] = {
      {"QUJD", "ABC"},
      {"QUI=", "AB"},
      {"QQ==", "A"},
      {"QUI", "AB"},
      {"Q", ""},
      {"", ""},
      {" Q U\nJ\tD \n", "ABC"},
      // "=" is skipped, not an end: the next block's characters fill the group.
      {"QQ==QUI=", QByteArray("A\x04\x14", 3)},
      {"@@ ##", ""},
      {wrapped, large},
  };
  for (const auto& row : rows)
    EXPECT_EQ(decoded(row.in), row.out) << row.in.left(20).constData();
}

class MessageViewTest : public SearchFixture {
 protected:
  void SetUp() override {
    SearchFixture::SetUp();
    plain = add("2020-01-01 10:00:00", "Plain");
    archive.exec(
        QStringLiteral("UPDATE email SET body_fld='No list here.' WHERE id=%1").arg(plain));
    withFiles = add("2020-01-02 10:00:00", "With files", 3);
    archive.exec(QStringLiteral("UPDATE email SET body_fld='See these.\n\nATTACHMENTS:\n"
                                "a.pdf\nmore names' WHERE id=%1")
                     .arg(withFiles));
    attach(withFiles, "a.pdf", "QUJD\nREVG");
    attach(withFiles, "two\nlines.txt", "plain text", 0);
    attach(withFiles, "page.html", "<p>hi</p>", 0);
    attach(plain, "unlisted.bin", "QQ==");
    retrieve();
  }
  QString link(int i, const QString& name) const {
    return tempDir() + "/" + QString::number(i) + "-QL-" + name;
  }
  int plain = 0;
  int withFiles = 0;
};

TEST_F(MessageViewTest, TheTextIsCutAfterTheMarkerAndEachAttachmentBecomesALink) {
  QSignalSpy changed(&view, &MessageView::bodyTextChanged);
  list.clickColumn("emailID");
  list.clickColumn("emailID");  // reversed: display row 0 is the last message
  view.tableViewSelectionDidChange(0);
  const QString head = QStringLiteral(
                           "ID: %1\nDATE: 2020-01-02 10:00:00\nFROM: ann@example.com\nTO: "
                           "bob@example.com\nSUBJECT: With files\nMAILBOX: Inbox\n\nSee these.\n\n"
                           "ATTACHMENTS:\n")
                           .arg(withFiles);
  EXPECT_EQ(view.shown().text, head + "\na.pdf\n\n\ntwolines.txt\n\n\npage.html\n\n");
  const int first = int(head.size()) + 1;
  EXPECT_EQ(view.shown().links,
            (QList<AttachmentLinkRange>{{first, 5, link(0, "a.pdf")},
                                        {first + 8, 12, link(1, "twolines.txt")},
                                        {first + 23, 9, link(2, "page.html")}}));
  EXPECT_EQ(view.attachmentIDForView, withFiles);
  EXPECT_TRUE(view.rowText.endsWith("\n\nSee these.\n\nATTACHMENTS:\na.pdf\nmore names"));
  ASSERT_EQ(changed.size(), 1);

  // Without the marker no links, although the message has an attachments row.
  view.tableViewSelectionDidChange(1);
  EXPECT_TRUE(view.shown().text.endsWith("\n\nNo list here.")) << view.shown().text.toStdString();
  EXPECT_TRUE(view.shown().links.isEmpty());
  EXPECT_EQ(view.attachmentIDForView, plain);

  // The marker without rows: the text cut, no links.
  archive.exec(QStringLiteral("DELETE FROM attachments WHERE id=%1").arg(withFiles));
  view.tableViewSelectionDidChange(0);
  EXPECT_EQ(view.shown().text, head);
  EXPECT_TRUE(view.shown().links.isEmpty());
  EXPECT_EQ(view.attachmentIDForView, 0);
}

TEST_F(MessageViewTest, ClickedLinksAreFetchedDecodedAndLaunchedSavedOrShownAsHtml) {
  QSignalSpy html(&opener, &AttachmentOpener::htmlAttachmentShown);
  view.showMessage(withFiles);
  progress.events.clear();
  // Launch works: the decoded file is handed to the desktop.
  ASSERT_TRUE(opener.textViewClickedOnLink(link(0, "a.pdf"), view.attachmentIDForView));
  EXPECT_EQ(test::readFile(link(0, "a.pdf")), "ABCDEF");
  EXPECT_EQ(workspace.openedFiles, QStringList{link(0, "a.pdf")});
  EXPECT_EQ(dialogs.alerts[0].title, "What do you want to do with this attachment?");
  EXPECT_EQ(dialogs.alerts[0].buttons, (QStringList{"Launch", "Cancel", "Save"}));
  EXPECT_EQ(progress.events.mid(0, 2), (QStringList{"open:Retrieving attachment...", "close"}));

  // Launch fails, "Save" over an existing file replaces it; the text attachment is as stored.
  const QString chosen = dir.filePath("saved.txt");
  ASSERT_TRUE(test::writeFile(chosen, "older content"));
  workspace.opens = false;
  dialogs.setNextAnswer(0);
  dialogs.setNextAnswer(0);
  dialogs.setNextFileName(chosen);
  EXPECT_TRUE(opener.textViewClickedOnLink(link(1, "twolines.txt"), withFiles));
  EXPECT_EQ(test::readFile(chosen), "plain text");
  EXPECT_EQ(dialogs.savePanels.last().title, "Save Attachment");
  EXPECT_EQ(dialogs.savePanels.last().directory, dir.path() + "/Desktop");
  EXPECT_EQ(dialogs.savePanels.last().fileName, "twolines.txt");
  EXPECT_EQ(dialogs.messages().mid(1),
            (QStringList{"Do you want to launch it or save it to a file?", "Try saving it instead.",
                         "The attachment has been saved"}));

  // "Cancel" and a cancelled save panel change nothing; HTML goes to the HTML window.
  dialogs.setNextAnswer(1);
  EXPECT_TRUE(opener.textViewClickedOnLink(link(0, "a.pdf"), withFiles));
  dialogs.setNextAnswer(2);
  EXPECT_TRUE(opener.textViewClickedOnLink(link(0, "a.pdf"), withFiles));
  EXPECT_TRUE(opener.textViewClickedOnLink(link(2, "page.html"), withFiles));
  EXPECT_EQ(html.size(), 1);
  EXPECT_EQ(test::readFile(link(2, "page.html")), "<p>hi</p>");
  EXPECT_EQ(dialogs.alerts.size(), 6);

  // A name ending in .HTML is offered for launch, not shown.
  attach(withFiles, "PAGE.HTML", "x", 0);
  dialogs.setNextAnswer(1);
  EXPECT_TRUE(opener.textViewClickedOnLink(link(3, "PAGE.HTML"), withFiles));
  EXPECT_EQ(html.size(), 1);
}

TEST_F(MessageViewTest, LinksWhoseRowOrFolderHasGoneGiveAClearAlert) {
  view.showMessage(withFiles);
  const QString removed = dir.filePath("saved.txt");
  // The attachments were deleted but for the HTML one, which now stands first.
  archive.exec(QStringLiteral("DELETE FROM attachments WHERE id=%1 AND filename_fld NOT LIKE "
                              "'%html'")
                   .arg(withFiles));
  EXPECT_FALSE(opener.textViewClickedOnLink(link(0, "a.pdf"), withFiles));
  EXPECT_EQ(dialogs.alerts.last().message, "This attachment is no longer in the database.");
  EXPECT_FALSE(QFile::exists(link(0, "a.pdf")));
  EXPECT_FALSE(progress.isOpen);

  ASSERT_TRUE(QDir(tempDir()).removeRecursively());
  EXPECT_FALSE(opener.textViewClickedOnLink(link(2, "page.html"), withFiles) ||
               opener.textViewClickedOnLink(link(0, "page.html"), withFiles));
  EXPECT_EQ(dialogs.alerts.last().style, AlertStyle::Critical);
  EXPECT_EQ(dialogs.alerts.last().message, "Couldn't open " + link(0, "page.html"));
}

TEST_F(MessageViewTest, TheSourceWindowAndTheReplyUseTheSelectedMessage) {
  QSignalSpy source(&view, &MessageView::origShown);
  archive.exec(QStringLiteral("INSERT INTO origemail VALUES(%1,'From: ann\n\nsource')").arg(plain));
  view.tableViewSelectionDidChange(0);
  view.viewOrig(0);
  ASSERT_EQ(source.size(), 1);
  EXPECT_EQ(source[0][0].toString(), "From: ann\n\nsource");

  // No source row: the attachment count of the selection is still the single value.
  view.tableViewSelectionDidChange(1);
  view.viewOrig(1);
  EXPECT_EQ(dialogs.messages(),
            QStringList{"There is no original raw source for this email in the database."});
  for (int i = 0; i < 9; ++i)
    attach(withFiles, QStringLiteral("n%1").arg(i), "QQ==");
  view.tableViewSelectionDidChange(1);  // twelve attachments: the count reads "12"
  view.viewOrig(1);
  EXPECT_EQ(source.last()[0].toString(), "12");

  // The reply goes to mailto, or to the sender when mailto is empty.
  archive.exec(QStringLiteral("UPDATE email SET mailto='' WHERE id=%1").arg(withFiles));
  view.replyToEmail(1);
  ASSERT_EQ(workspace.openedUrls.size(), 1);
  EXPECT_EQ(workspace.openedUrls[0].toString(), "mailto:ann@example.com");
  EXPECT_TRUE(pasteboard.text().startsWith("DATE: 2020-01-02 10:00:00\n"));
  EXPECT_FALSE(pasteboard.text().contains("ID: "));
}

}  // namespace
}  // namespace quillery::search
