#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

#include <python/bindings/WatchedWork.h>

namespace ScrollingCapture::Python {
namespace {

namespace py = pybind11;

/// How long a signal may wait.
constexpr std::chrono::milliseconds BetweenLooks{20};

/// What the work and who watches it tell each other.
class Watch {
 public:
  bool Tell(int percent) {
    const std::lock_guard<std::mutex> lock(mutex);
    news = percent;
    changed.notify_one();
    return !stopped;
  }

  void Stop() {
    const std::lock_guard<std::mutex> lock(mutex);
    stopped = true;
  }

  void End(std::exception_ptr thrown) {
    const std::lock_guard<std::mutex> lock(mutex);
    ended = true;
    failure = std::move(thrown);
    changed.notify_one();
  }

  /// Waits for news or the end of the work, for a short while.
  /// @return whether the work goes on
  bool Look(std::optional<int>& percent) {
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait_for(lock, BetweenLooks, [this] { return ended || news; });
    percent = std::exchange(news, std::nullopt);
    return !ended;
  }

  const std::exception_ptr& Failure() const { return failure; }

 private:
  std::mutex mutex;
  std::condition_variable changed;
  std::optional<int> news;
  bool stopped = false;
  bool ended = false;
  std::exception_ptr failure;
};

bool LookWithoutGil(Watch& watch, std::optional<int>& percent) {
  const py::gil_scoped_release released;
  return watch.Look(percent);
}

void CallPython(const std::optional<int>& percent, const py::object& listener) {
  if (PyErr_CheckSignals() != 0) {
    throw py::error_already_set();
  }
  if (percent && !listener.is_none()) {
    listener(*percent);
  }
}

/// @return what Python raised meanwhile
std::exception_ptr WatchUntilEnd(Watch& watch, const py::object& listener) {
  std::exception_ptr raised;
  for (bool goesOn = true; goesOn;) {
    std::optional<int> percent;
    goesOn = LookWithoutGil(watch, percent);
    if (raised) {
      continue;
    }
    try {
      CallPython(percent, listener);
    } catch (...) {
      raised = std::current_exception();
      watch.Stop();
    }
  }
  return raised;
}

void Rethrow(const std::exception_ptr& exception) {
  if (exception) {
    std::rethrow_exception(exception);
  }
}

}  // namespace

void RunWatched(const std::function<void(const TellProgress&)>& work, const py::object& listener) {
  Watch watch;
  std::thread worker([&watch, &work] {
    std::exception_ptr thrown;
    try {
      work([&watch](int percent) { return watch.Tell(percent); });
    } catch (...) {
      thrown = std::current_exception();
    }
    watch.End(std::move(thrown));
  });
  const std::exception_ptr raised = WatchUntilEnd(watch, listener);
  worker.join();
  Rethrow(raised);
  Rethrow(watch.Failure());
}

}  // namespace ScrollingCapture::Python
