#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/matching/SequenceMatcher.h>

namespace ScrollingCapture {
namespace {

/// One run over a sequence. Each thread takes the next capture, prepares it, and matches it with
/// those of its neighbours that are there already; whoever finds the next pair in order ready
/// places it.
class SequenceRun {
 public:
  SequenceRun(IImageProvider& captures, IStitcherListener* listener,
              const SequenceSettings& settings)
      : captures(captures),
        listener(listener),
        settings(settings),
        count(captures.Count()),
        window(std::size_t{std::max(settings.threadCount, 1U)} + 1),
        placer(captures, settings.matching) {}

  std::vector<PlacedCapture> Run() {
    {
      Threads helpers;
      StartHelpers(helpers);
      Work();
    }
    if (failure) {
      std::rethrow_exception(failure);
    }
    if (!isCancelled && listener != nullptr) {
      isCancelled = !listener->ProgressCallback(settings.progressEnd);
    }
    if (!isCancelled) {
      return placer.All();
    }
    listener->StitchingError(IStitcherListener::Cancelled, false);
    return {};
  }

 private:
  /// Joins its threads when it goes out of scope.
  class Threads {
   public:
    Threads() = default;
    Threads(const Threads&) = delete;
    Threads& operator=(const Threads&) = delete;
    ~Threads() {
      for (std::thread& thread : threads) {
        thread.join();
      }
    }
    std::vector<std::thread> threads;
  };

  /// A capture that is being worked on.
  struct Capture {
    std::shared_ptr<cv::Mat> pixels;  ///< until both pairs are matched
    PreparedCapture prepared;
    std::optional<MatchedPair> pair;  ///< with the capture before
    bool isPairTaken = false;
    bool isReady = false;
  };

  using Lock = std::unique_lock<std::mutex>;

  /// Where no further thread can be had, those that there are do the work.
  void StartHelpers(Threads& helpers) {
    const std::size_t wanted = std::min<std::size_t>(settings.threadCount, count);
    helpers.threads.reserve(wanted);
    try {
      while (helpers.threads.size() + 1 < wanted) {
        helpers.threads.emplace_back([this] { Work(); });
      }
    } catch (const std::system_error&) {
      return;
    }
  }

  void Work() {
    try {
      Lock lock(mutex);
      while (const std::optional<std::size_t> index = TakeNext(lock)) {
        Prepare(*index, lock);
        Match(*index, lock);
        Match(*index + 1, lock);
        PlaceReady(lock);
      }
    } catch (...) {
      const std::lock_guard<std::mutex> lock(mutex);
      if (!failure) {
        failure = std::current_exception();
      }
      changed.notify_all();
    }
  }

  bool MustStop() const { return failure != nullptr || isCancelled; }

  std::optional<std::size_t> TakeNext(Lock& lock) {
    changed.wait(lock, [this] { return MustStop() || next == count || next < placed + window; });
    if (MustStop() || next == count) {
      return std::nullopt;
    }
    return next++;
  }

  void Prepare(std::size_t index, Lock& lock) {
    lock.unlock();
    Capture capture;
    capture.pixels = captures.GetImageAt(index);
    capture.prepared = PreparedCapture(*capture.pixels);
    capture.isReady = true;
    lock.lock();
    working[index] = std::move(capture);
  }

  bool IsReady(std::size_t index) const {
    const auto found = working.find(index);
    return found != working.end() && found->second.isReady;
  }

  /// Matches a capture with the one before, when both are there and nobody else does.
  void Match(std::size_t index, Lock& lock) {
    if (index == 0 || !IsReady(index) || !IsReady(index - 1) || working[index].isPairTaken) {
      return;
    }
    working[index].isPairTaken = true;
    const Capture earlier = working[index - 1];
    const Capture later = working[index];
    lock.unlock();
    MatchedPair pair(*earlier.pixels, earlier.prepared, *later.pixels, later.prepared,
                     settings.matching);
    lock.lock();
    working[index].pair = std::move(pair);
  }

  bool IsPlaceable(std::size_t index) const {
    return IsReady(index) && (index == 0 || working.at(index).pair.has_value());
  }

  void PlaceReady(Lock& lock) {
    while (!isPlacing && !MustStop() && IsPlaceable(placed)) {
      isPlacing = true;
      const Capture capture = working[placed];
      const std::size_t index = placed;
      lock.unlock();
      if (index == 0) {
        placer.Place(index, capture.prepared);
      } else {
        placer.Place(index, capture.prepared, *capture.pair);
      }
      lock.lock();
      isPlacing = false;
      Forget(index);
      ++placed;
      TellProgress();
      changed.notify_all();
    }
  }

  /// The capture that was placed is still needed by the pair with the next one.
  void Forget(std::size_t index) {
    if (index > 0) {
      working.erase(index - 1);
    }
  }

  void TellProgress() {
    if (listener != nullptr && placed > 1) {
      const std::int64_t range = std::int64_t{settings.progressEnd} - settings.progressStart;
      const double progress = settings.progressStart + static_cast<double>(range) *
                                                           static_cast<double>(placed - 1) /
                                                           static_cast<double>(count - 1);
      isCancelled = !listener->ProgressCallback(TruncateToInt(static_cast<float>(progress)));
    }
  }

  IImageProvider& captures;
  IStitcherListener* const listener;
  const SequenceSettings settings;
  const std::size_t count;
  const std::size_t window;  ///< how many captures may be worked on beyond those that are placed
  CapturePlacer placer;

  std::mutex mutex;
  std::condition_variable changed;
  std::map<std::size_t, Capture> working;
  std::size_t next = 0;
  std::size_t placed = 0;
  bool isPlacing = false;
  bool isCancelled = false;
  std::exception_ptr failure;
};

}  // namespace

std::vector<PlacedCapture> MatchSequence(IImageProvider& captures, IStitcherListener* listener,
                                         const SequenceSettings& settings) {
  return SequenceRun(captures, listener, settings).Run();
}

}  // namespace ScrollingCapture
