#pragma once

#include <QMetaType>
#include <QObject>
#include <QString>
#include <atomic>
#include <functional>
#include <thread>

namespace ScrollingCapture::Desktop {

/// Work that takes its time, on a thread of its own: one at a time. It belongs to the thread of the
/// user interface, where its signals arrive as well.
class Errand : public QObject {
  Q_OBJECT

 public:
  using Deed = std::function<void()>;

  explicit Errand(QObject* parent = nullptr);

  /// Stops the work, and waits for it: whatever the work uses has to outlive this.
  ~Errand() override;

  /// Starts work, which must not be under way; it ends with one of the signals. An exception ends
  /// it as well.
  void start(const std::function<void()>& work);

  /// Asks the work to stop.
  void stop() { isAskedToStop = true; }

  bool isBusy() const { return busy; }

  /// For the work: whether it may go on.
  bool goesOn() const { return !isAskedToStop; }

  /// For the work: throws Cancelled when it was asked to stop.
  void requireGoingOn() const;

  /// For the work: has something done on the thread of the user interface, unless this is gone by
  /// then.
  void post(const Deed& deed) { emit posted(deed); }

 signals:
  void done();
  void stopped();
  /// @param line what went wrong, for the user
  void failed(const QString& line);

  /// Brings what was posted to the other thread.
  void posted(const Deed& deed);

 private:
  enum class End { Done, Stopped, Failed };

  void run(const std::function<void()>& work);
  void finish(End end, const QString& line);

  std::atomic<bool> isAskedToStop{false};
  bool busy = false;
  std::thread thread;
};

}  // namespace ScrollingCapture::Desktop

Q_DECLARE_METATYPE(ScrollingCapture::Desktop::Errand::Deed)
