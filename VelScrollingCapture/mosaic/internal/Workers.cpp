#include <algorithm>
#include <atomic>
#include <exception>

#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {

/// The work that is left, and the first exception that it threw.
class Workers::Task {
 public:
  Task(size_t count, const std::function<void(size_t)>& work) : count(count), work(work) {}

  void DoSome() noexcept {
    for (size_t index = next++; index < count; index = next++) {
      try {
        work(index);
      } catch (...) {
        const std::lock_guard<std::mutex> guard(lock);
        failure = failure == nullptr ? std::current_exception() : failure;
        next = count;
      }
    }
  }

  void RethrowFailure() const {
    if (failure != nullptr) {
      std::rethrow_exception(failure);
    }
  }

 private:
  const size_t count;
  const std::function<void(size_t)>& work;
  std::atomic<size_t> next = 0;
  std::mutex lock;
  std::exception_ptr failure;
};

Workers::~Workers() {
  {
    const std::lock_guard<std::mutex> guard(lock);
    ends = true;
  }
  hasTask.notify_all();
  for (std::thread& helper : helpers) {
    helper.join();
  }
}

void Workers::Do(size_t count, const std::function<void(size_t)>& work) {
  Task current(count, work);
  StartHelpers(std::min(threadCount, count));
  if (!helpers.empty() && count > 1) {
    const std::lock_guard<std::mutex> guard(lock);
    task = &current;
    hasTask.notify_all();
  }
  current.DoSome();
  {
    std::unique_lock<std::mutex> guard(lock);
    task = nullptr;
    hasHelped.wait(guard, [&] { return helping == 0; });
  }
  current.RethrowFailure();
}

/// Starts the helpers that are missing for so many threads; fewer where the system gives no more.
void Workers::StartHelpers(size_t wanted) {
  try {
    while (helpers.size() + 1 < wanted) {
      helpers.emplace_back([this] { Help(); });
    }
  } catch (const std::exception&) {
    return;  // A thread that throws on its way has not been started.
  }
}

void Workers::Help() {
  std::unique_lock<std::mutex> guard(lock);
  for (;;) {
    hasTask.wait(guard, [&] { return ends || task != nullptr; });
    if (ends) {
      return;
    }
    Task& current = *task;
    ++helping;
    guard.unlock();
    current.DoSome();
    guard.lock();
    --helping;
    task = nullptr;  // Nothing is left to begin with.
    hasHelped.notify_one();
  }
}

}  // namespace ScrollingCapture
