#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class QHeaderView;
class QSplitter;
class QWidget;

namespace quillery::platform {
class Settings;
}

namespace quillery::app {

// Keeps window positions and sizes, a table's column layout and a splitter's division
// across runs, each under its autosave name in the settings store ("windowFrames/<name>",
// "tableColumns/<name>", "splitters/<name>"). What was stored comes back when the name is
// given; a window's frame is stored whenever it is hidden, and everything by saveAll(). A
// window that was never shown and had nothing stored keeps its default frame.
class WindowFrames : public QObject {
  Q_OBJECT

 public:
  explicit WindowFrames(platform::Settings& settings, QObject* parent = nullptr);

  void setFrameAutosaveName(QWidget* window, const QString& name);
  // The header's model must be set, so that the stored state finds its columns.
  void setColumnAutosaveName(QHeaderView* header, const QString& name);
  void setSplitterAutosaveName(QSplitter* splitter, const QString& name);
  void saveAll();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct Frame {
    QPointer<QWidget> window;
    QString name;
    bool known = false;  // restored from the store, or shown in this run
  };
  void saveFrame(const Frame& frame);

  platform::Settings& settings_;
  QList<Frame> frames_;
  QList<QPair<QPointer<QHeaderView>, QString>> headers_;
  QList<QPair<QPointer<QSplitter>, QString>> splitters_;
};

}  // namespace quillery::app
