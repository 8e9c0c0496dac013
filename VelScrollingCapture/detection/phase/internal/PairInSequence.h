#pragma once

#include <cstddef>
#include <memory>

#include <opencv2/core.hpp>

namespace ScrollingCapture {

class SharedSpectra;

/// The pair of a sequence that a thread is detecting, from when this is made to its end.
///
/// A sequence's pairs go through the detector's virtual pairwise operations, which a derived class
/// may override and whose signatures know nothing of sequences. So the thread remembers the pair,
/// and whichever call reaches the detector's own operation finds it there.
class PairInSequence {
 public:
  /// @param detector the detector of the sequence; other detectors that an override asks on the
  ///                 same thread have nothing to do with the pair
  /// @param spectra  the spectra of the sequence
  /// @param index    of the pair, which is that of its earlier capture
  PairInSequence(const void* detector, SharedSpectra& spectra, size_t index);
  PairInSequence(const PairInSequence&) = delete;
  PairInSequence& operator=(const PairInSequence&) = delete;
  ~PairInSequence();

  /// The pair that this thread is detecting for the detector; null when there is none.
  static const PairInSequence* Of(const void* detector);

  /// As the function CorrelateImages, with the sequence's spectra.
  std::shared_ptr<const cv::Mat> CorrelateImages(const cv::Mat& firstGrey,
                                                 const cv::Mat& secondGrey,
                                                 const cv::Size& dftSize) const;

 private:
  const void* const detector;
  SharedSpectra& spectra;
  const size_t index;
  const PairInSequence* const outer;
};

}  // namespace ScrollingCapture
