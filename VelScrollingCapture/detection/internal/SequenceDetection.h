#pragma once

#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/core/IImageProvider.h>
#include <VelScrollingCapture/core/IStitcherListener.h>
#include <VelScrollingCapture/core/Translation.h>

namespace ScrollingCapture {

/// One run over all pairs of consecutive captures, each pair on a worker thread of its own.
///
/// Listener calls made by workers are serialised by the run's mutex.
class SequenceDetection {
 public:
  /// What the caller of the run has chosen.
  struct Settings {
    bool expectConsistentTranslations;
    unsigned int threadCount;  ///< the most workers that run at once; with 0 the run never ends
    int progressStart;
    int progressEnd;
  };

  /// Detects the translation from the first capture to the second, and when consistent translations
  /// are expected a second candidate as well. The pair has the index of its first capture. Called
  /// by several workers at once.
  using DetectPair = std::function<Translation(size_t pair, const cv::Mat& first,
                                               const cv::Mat& second, Translation& alternative)>;

  /// All references and the listener (which may be null) must outlive the run.
  SequenceDetection(DetectPair detectPair, IImageProvider& images, IStitcherListener* listener,
                    const Settings& settings);

  /// Detects the translations; call it once.
  ///
  /// What the provider throws on a worker is thrown here once all workers have ended; no further
  /// pair is started then. What a pairwise detection throws ends the process.
  /// @return one element a pair; empty when there are fewer than two captures, or when cancelled
  std::vector<Translation> Run();

 private:
  struct CapturePair {
    std::shared_ptr<cv::Mat> earlier;
    std::shared_ptr<cv::Mat> later;
  };

  void Dispatch();
  bool StartNextWorker();
  void RunWorker(size_t pair);
  bool FetchPair(size_t pair, CapturePair& captures);
  void FinishPair();
  void PreferRepeatedTranslations();

  const DetectPair detectPair;
  IImageProvider& images;
  IStitcherListener* const listener;
  const Settings settings;

  std::vector<Translation> result;
  std::vector<Translation> alternatives;
  std::vector<std::thread> workers;
  std::mutex mutex;
  std::condition_variable slotFreed;
  size_t nextPair = 0;  ///< the first one that is not yet started
  unsigned int running = 0;
  float progress = 0;
  float progressStep = 0;
  bool cancelled = false;
  std::exception_ptr providerFailure;
};

}  // namespace ScrollingCapture
