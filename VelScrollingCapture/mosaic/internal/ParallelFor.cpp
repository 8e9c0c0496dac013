#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

#include <VelScrollingCapture/mosaic/internal/ParallelFor.h>

namespace ScrollingCapture {
namespace {

/// The work that is left, and the first exception that it threw.
class SharedWork {
 public:
  SharedWork(size_t count, const std::function<void(size_t)>& work) : count(count), work(work) {}

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

/// Starts up to `threadCount` threads; fewer where the system gives no more.
void StartThreads(size_t threadCount, SharedWork& work, std::vector<std::thread>& threads) {
  try {
    threads.reserve(threadCount);
    while (threads.size() < threadCount) {
      threads.emplace_back([&work] { work.DoSome(); });
    }
  } catch (const std::exception&) {
    return;  // A thread that throws on its way has not been started.
  }
}

}  // namespace

void ParallelFor(size_t count, unsigned threadCount, const std::function<void(size_t)>& work) {
  SharedWork shared(count, work);
  const size_t wanted = std::min<size_t>(std::max(threadCount, 1U), count);
  std::vector<std::thread> threads;
  if (wanted > 1) {
    StartThreads(wanted - 1, shared, threads);
  }
  shared.DoSome();
  for (std::thread& thread : threads) {
    thread.join();
  }
  shared.RethrowFailure();
}

}  // namespace ScrollingCapture
