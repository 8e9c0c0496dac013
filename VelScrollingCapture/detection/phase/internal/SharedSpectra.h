#pragma once

#include <condition_variable>
#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/detection/phase/internal/MatrixPool.h>

namespace ScrollingCapture {

/// Correlates the pairs of a sequence, whose neighbours share a capture, and transforms each
/// capture only once.
///
/// A spectrum belongs to the grey image that it was made from, and is used again only for an image
/// of the same pixels; where those came from does not matter. Any number of threads may correlate
/// at once.
class SharedSpectra {
 public:
  /// @param capacity how many spectra are kept for later pairs; the oldest one makes room
  explicit SharedSpectra(size_t capacity) : capacity(capacity) {}

  /// As the function CorrelateImages, which gives the same bits.
  std::shared_ptr<const cv::Mat> CorrelateImages(const cv::Mat& firstGrey,
                                                 const cv::Mat& secondGrey,
                                                 const cv::Size& dftSize);

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

  Spectrum KeptSpectrum(const cv::Mat& grey, const cv::Size& dftSize);
  Spectrum LastUseOfSpectrum(const cv::Mat& grey, const cv::Size& dftSize);
  Spectrum NewSpectrum(const cv::Mat& grey, const cv::Size& dftSize);
  std::shared_ptr<Entry> Find(const cv::Mat& grey) const;
  std::shared_ptr<Entry> Keep(const cv::Mat& grey);
  Spectrum WaitFor(const std::shared_ptr<Entry>& entry, std::unique_lock<std::mutex>& lock);
  void Finish(const std::shared_ptr<Entry>& entry, const Spectrum& columns);

  const size_t capacity;
  MatrixPool pool;
  std::mutex mutex;
  std::condition_variable made;
  std::list<std::shared_ptr<Entry>> entries;  ///< the oldest first
};

}  // namespace ScrollingCapture
