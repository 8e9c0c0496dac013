#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace ScrollingCapture {

/// Threads that share work with the calling one, and wait for more in between.
class Workers {
 public:
  /// @param threadCount the most threads that work at once, the calling one among them
  explicit Workers(unsigned threadCount) : threadCount(threadCount) {}
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers();

  /// Calls `work(0)` to `work(count - 1)`, each once.
  ///
  /// When a call throws, no further one is started, and the first exception passes to the caller
  /// once all calls have ended. Where a thread cannot be started, those that there are do the work.
  /// Nobody waits for a thread that has not begun with anything.
  void Do(size_t count, const std::function<void(size_t)>& work);

 private:
  class Task;

  void StartHelpers(size_t wanted);
  void Help();

  const size_t threadCount;
  std::mutex lock;
  std::condition_variable hasTask;
  std::condition_variable hasHelped;
  Task* task = nullptr;  ///< while there may be something left to begin with
  size_t helping = 0;    ///< helpers at work
  bool ends = false;
  std::vector<std::thread> helpers;
};

}  // namespace ScrollingCapture
