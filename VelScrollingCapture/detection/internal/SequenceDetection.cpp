#include <cstdint>
#include <memory>
#include <utility>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/internal/Messages.h>
#include <VelScrollingCapture/core/internal/Truncation.h>
#include <VelScrollingCapture/detection/internal/SequenceDetection.h>

namespace ScrollingCapture {
namespace {

/// Joins all threads of a vector when it goes out of scope, also when a further one cannot be
/// started.
class ThreadJoiner {
 public:
  explicit ThreadJoiner(std::vector<std::thread>& threads) : threads(threads) {}
  ThreadJoiner(const ThreadJoiner&) = delete;
  ThreadJoiner& operator=(const ThreadJoiner&) = delete;
  ~ThreadJoiner() {
    for (std::thread& thread : threads) {
      thread.join();
    }
  }

 private:
  std::vector<std::thread>& threads;
};

}  // namespace

SequenceDetection::SequenceDetection(DetectPair detectPair, IImageProvider& images,
                                     IStitcherListener* listener, const Settings& settings)
    : detectPair(std::move(detectPair)), images(images), listener(listener), settings(settings) {}

std::vector<Translation> SequenceDetection::Run() {
  const size_t count = images.Count();
  if (count < 2) {
    TellError("Error: Not enough images in the IImageProvider.");
    return {};
  }
  const size_t pairs = count - 1;
  result.resize(pairs);
  alternatives.resize(pairs);
  const std::int64_t progressRange = std::int64_t{settings.progressEnd} - settings.progressStart;
  progressStep = static_cast<float>(progressRange) / static_cast<float>(pairs);
  progress = static_cast<float>(settings.progressStart);

  Dispatch();
  if (providerFailure) {
    std::rethrow_exception(providerFailure);
  }

  if (!cancelled) {
    if (settings.expectConsistentTranslations) {
      PreferRepeatedTranslations();
    }
    cancelled = listener != nullptr && !listener->ProgressCallback(settings.progressEnd);
  }
  if (cancelled) {
    result.clear();
    if (listener != nullptr) {
      listener->StitchingError(IStitcherListener::Cancelled, false);
    }
  }
  return result;
}

void SequenceDetection::Dispatch() {
  const ThreadJoiner joiner(workers);
  bool goOn = true;
  while (goOn && nextPair < result.size()) {
    goOn = StartNextWorker();
  }
}

/// Returns whether to go on. A cancellation that comes while this waits for a free slot still lets
/// one more worker start.
bool SequenceDetection::StartNextWorker() {
  std::unique_lock<std::mutex> lock(mutex);
  slotFreed.wait(lock, [this] { return running < settings.threadCount; });
  workers.emplace_back(&SequenceDetection::RunWorker, this, nextPair);
  ++nextPair;
  ++running;
  return !cancelled && !providerFailure;
}

void SequenceDetection::RunWorker(size_t pair) {
  {
    CapturePair captures;
    if (FetchPair(pair, captures)) {
      result[pair] = detectPair(pair, *captures.earlier, *captures.later, alternatives[pair]);
    }
  }
  FinishPair();
}

/// A capture that cannot be had, such as one whose spill file is gone, is no reason to end the
/// process: the failure is kept for the caller.
bool SequenceDetection::FetchPair(size_t pair, CapturePair& captures) {
  try {
    captures.earlier = images.GetImageAt(pair);
    captures.later = images.GetImageAt(pair + 1);
    return true;
  } catch (...) {
    const std::lock_guard<std::mutex> lock(mutex);
    providerFailure = std::current_exception();
    return false;
  }
}

void SequenceDetection::FinishPair() {
  const std::lock_guard<std::mutex> lock(mutex);
  if (listener != nullptr && !cancelled && !providerFailure) {
    progress += progressStep;
    cancelled = !listener->ProgressCallback(TruncateToInt(progress));
  }
  --running;
  slotFreed.notify_one();
}

/// Compares with the previous pair as this pass has left it, so that a replacement can go on along
/// the sequence.
void SequenceDetection::PreferRepeatedTranslations() {
  for (size_t pair = 1; pair < result.size(); ++pair) {
    if (alternatives[pair] == result[pair - 1]) {
      result[pair] = alternatives[pair];
    }
  }
}

}  // namespace ScrollingCapture
