#pragma once

#include <condition_variable>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/detection/phase/internal/MatrixPool.h>

namespace ScrollingCapture {

/// Correlates the pairs of a sequence, whose neighbours share a capture, and transforms each
/// capture only once.
///
/// A spectrum is found by its capture's index, and used again only when the capture still has the
/// very pixels that it was made from: providers may change them, and overriding detectors may hand
/// on others. Any number of threads may correlate at once.
class SharedSpectra {
 public:
  /// @param capacity how many spectra are kept for later pairs; the earliest one makes room
  explicit SharedSpectra(size_t capacity) : capacity(capacity) {}

  /// As the function CorrelateImages, which gives the same bits.
  /// @param pair the index of the first image's capture; the second one's comes after it
  std::shared_ptr<const cv::Mat> CorrelatePair(size_t pair, const cv::Mat& firstGrey,
                                               const cv::Mat& secondGrey, const cv::Size& dftSize);

 private:
  using Spectrum = std::shared_ptr<cv::Mat>;

  /// A spectrum that a thread makes or has made.
  struct Entry {
    explicit Entry(cv::Mat grey) : grey(std::move(grey)) {}

    const cv::Mat grey;
    bool beingMade = true;
    Spectrum columns;  ///< stays null when the transform fails
  };

  /// One thread's use of a spectrum, which ends under the lock: whoever is then the only user knows
  /// that nobody reads it any more.
  class Use {
   public:
    Use(SharedSpectra& owner, Spectrum spectrum) : owner(owner), spectrum(std::move(spectrum)) {}
    Use(const Use&) = delete;
    Use& operator=(const Use&) = delete;
    ~Use();

    const cv::Mat& operator*() const { return *spectrum; }

    /// The spectrum's own memory when there is no other user, which there then cannot be any more
    /// for a spectrum that is not kept; null otherwise.
    Spectrum MemoryIfUnused() const;

   private:
    SharedSpectra& owner;
    Spectrum spectrum;
  };

  Spectrum KeptSpectrum(size_t capture, const cv::Mat& grey, const cv::Size& dftSize);
  Spectrum LastUseOfSpectrum(size_t capture, const cv::Mat& grey, const cv::Size& dftSize);
  Spectrum NewSpectrum(const cv::Mat& grey, const cv::Size& dftSize);
  std::shared_ptr<Entry> Keep(size_t capture, const cv::Mat& grey);
  std::shared_ptr<Entry> Take(size_t capture);
  Spectrum WaitFor(const Entry& entry);
  void Finish(Entry& entry, const Spectrum& columns);

  const size_t capacity;
  MatrixPool pool;
  std::mutex mutex;
  std::condition_variable made;
  std::map<size_t, std::shared_ptr<Entry>> entries;  ///< by the capture's index
};

}  // namespace ScrollingCapture
