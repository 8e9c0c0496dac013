#pragma once

#include <condition_variable>
#include <exception>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

namespace ScrollingCapture::Program {

/// Work in two steps on several threads: the first steps of different items at once and in any
/// order, the second steps one at a time and in the order in which the items were added.
///
/// The thread that adds items helps when there are many, so that one thread is enough, and none is
/// idle. At most twice as many items as threads wait or are worked on. All operations but the steps
/// belong to one thread.
class OrderedWork {
 public:
  /// @param threads how many work at once at most, the one that adds items included; at least 1.
  ///                More than 16 do not: what they hold would take much memory.
  explicit OrderedWork(unsigned int threads);
  OrderedWork(const OrderedWork&) = delete;
  OrderedWork& operator=(const OrderedWork&) = delete;

  /// Waits for the steps that have begun and drops the others.
  ~OrderedWork();

  /// Adds an item; waits, or works, while there are many. What an earlier step has thrown is thrown
  /// from here and from Finish, the first exception only; no step begins after that.
  void Add(std::function<void()> first, std::function<void()> second);

  /// Returns when all steps are done.
  void Finish();

 private:
  enum class State { Waiting, Running, Ready };
  struct Item {
    std::function<void()> first;
    std::function<void()> second;
    State state = State::Waiting;
  };
  using Lock = std::unique_lock<std::mutex>;

  void WorkUntilFewerThan(Lock& lock, size_t count);
  bool RunOneStep(Lock& lock);
  void RunFirst(Lock& lock, Item& item);
  void RunSecond(Lock& lock);
  void Run(Lock& lock, const std::function<void()>& step);
  void Help();
  void Stop();

  std::mutex mutex;
  std::condition_variable changed;
  std::list<Item> items;
  bool inSecond = false;  ///< a second step runs
  bool stopped = false;
  std::exception_ptr failure;
  size_t mostItems;
  std::vector<std::thread> helpers;
};

}  // namespace ScrollingCapture::Program
