#include <VelScrollingCapture/detection/phase/internal/PairInSequence.h>
#include <VelScrollingCapture/detection/phase/internal/SharedSpectra.h>

namespace ScrollingCapture {
namespace {

thread_local const PairInSequence* innermost = nullptr;

}  // namespace

PairInSequence::PairInSequence(const void* detector, SharedSpectra& spectra, size_t index)
    : detector(detector), spectra(spectra), index(index), outer(innermost) {
  innermost = this;
}

PairInSequence::~PairInSequence() { innermost = outer; }

const PairInSequence* PairInSequence::Of(const void* detector) {
  return innermost != nullptr && innermost->detector == detector ? innermost : nullptr;
}

std::shared_ptr<const cv::Mat> PairInSequence::CorrelateImages(const cv::Mat& firstGrey,
                                                               const cv::Mat& secondGrey,
                                                               const cv::Size& dftSize) const {
  return spectra.CorrelatePair(index, firstGrey, secondGrey, dftSize);
}

}  // namespace ScrollingCapture
