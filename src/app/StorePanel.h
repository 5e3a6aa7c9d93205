#pragma once

#include <QList>
#include <QWidget>

class QLabel;
class QPushButton;
class QSplitter;
class QTableView;
class QTextBrowser;

namespace quillery::app {

// The panel of store runs and of the result list, which fills the main window: the table of
// listed messages, the message text below it and the two counts. Its window title is the
// outcome of the last retrieval or store run ("done storing email in ..."); the main window
// shows it in its own title. The table never sorts by itself: a click on a column header is
// passed on through columnClicked, and the list says which indicator to show.
class StorePanel : public QWidget {
  Q_OBJECT

 public:
  explicit StorePanel(QWidget* parent = nullptr);

  // Applies the list font to the table's cells (the header keeps the desktop's font) and sets
  // the row height to the font's line height plus 2 points.
  void applyListFont(const QFont& font);
  // The table rows the user selected, ascending.
  QList<int> selectedDisplayRows() const;

  QTableView* storeTableView;
  QTextBrowser* bodyTextView;
  QPushButton* viewOrigButton;
  QLabel* dbCountTextField;
  QLabel* listCountTextField;
  QSplitter* splitter;

 Q_SIGNALS:
  void columnClicked(int section);
};

}  // namespace quillery::app
