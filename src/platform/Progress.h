#pragma once

#include <QString>
#include <functional>

namespace quillery::platform {

// The progress panel that long operations show. The indicator keeps moving on its own while
// the main thread works; the count is redrawn at once when it changes.
class Progress {
 public:
  virtual ~Progress() = default;

  // Shows the panel in front with this title and starts the moving indicator.
  virtual void open(const QString& title) = 0;
  virtual void setTitle(const QString& title) = 0;
  // Writes the count text and redraws the panel immediately.
  virtual void showCount(const QString& text) = 0;
  // Names the item being worked on (the store run's current file and subject).
  virtual void showItem(const QString& text) = 0;
  // The controls a store run shows beside the indicator, in the order they are hidden: the
  // count alone (a listing ends), the count and the item text (a failure that leaves the run
  // going, so it can still be cancelled), or those and the cancel button (the run's end).
  enum class RunControls { Count, CountAndItem, All };
  // Shows or hides the store run's controls.
  virtual void setRunControlsVisible(bool visible, RunControls which) = 0;
  // Closes the panel; callers close it when their work ends, also on error paths.
  virtual void close() = 0;

  // Offers the user a way to stop the work that opens the panel next: a Stop button that calls
  // stop, which works while the work calls keepResponsive(). An empty function withdraws the
  // offer, and so does close(). A port without such a button ignores the offer.
  virtual void offerStop(std::function<void()> stop) { (void)stop; }
  // Lets waiting events through while long work runs on the main thread: repaints, and the
  // Stop button offered (no other input reaches the windows meanwhile). Does nothing in a port
  // that has no events.
  virtual void keepResponsive() {}

  // Redraws the count only when it is an exact multiple of step, so a long loop repaints
  // every step-th item. The step must not be 0.
  void doProgressCount(int count, int step) {
    if (count % step == 0)
      showCount(QString::number(count));
  }
};

}  // namespace quillery::platform
