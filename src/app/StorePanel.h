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
  // The count of long work, and during a store run the message being stored and the run's
  // cancel button. They stand here rather than in the progress panel so that a store run can
  // be followed and cancelled even when that panel has been closed. Hidden until shown.
  QLabel* progressTextField;
  QLabel* parseFileTextField;
  QPushButton* parseCancelButton;

 Q_SIGNALS:
  void columnClicked(int section);
  // The run's cancel button was pressed.
  void cancelRequested();
};

}  // namespace quillery::app
