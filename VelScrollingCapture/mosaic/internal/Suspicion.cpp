#include <algorithm>

#include <opencv2/imgproc.hpp>

#include <VelScrollingCapture/mosaic/internal/Blame.h>
#include <VelScrollingCapture/mosaic/internal/EvidenceGatherer.h>
#include <VelScrollingCapture/mosaic/internal/FixedFeatures.h>
#include <VelScrollingCapture/mosaic/internal/Panels.h>
#include <VelScrollingCapture/mosaic/internal/Suspicion.h>

namespace ScrollingCapture {
namespace {

/// Captures are judged in stretches, so that the evidence does not grow with their number: so many
/// at a time, in the light of so many before and after them.
constexpr size_t StretchLength = 16;
constexpr size_t StretchMargin = 8;

/// From this suspicion on a cell counts as covered when its features are looked for.
constexpr double Covered = 0.5;

/// How suspect the neighbours of a covered cell are at least, next to it and one further away: what
/// covers content may cast a shadow.
constexpr double NextToCovered = 0.49;
constexpr double NearCovered = 0.4;

/// Makes what lies near covered cells suspect.
void SuspectShadows(cv::Mat& suspicion) {
  cv::Mat next;
  cv::Mat near;
  cv::dilate(suspicion, next, cv::Mat::ones(3, 3, CV_8U));
  cv::dilate(suspicion, near, cv::Mat::ones(5, 5, CV_8U));
  next *= NextToCovered;
  near *= NearCovered;
  cv::max(suspicion, next, suspicion);
  cv::max(suspicion, near, suspicion);
}

bool AnyOf(const std::vector<bool>& flags, size_t begin, size_t end) {
  const auto first = flags.begin() + static_cast<std::ptrdiff_t>(begin);
  const auto last = flags.begin() + static_cast<std::ptrdiff_t>(end);
  return std::find(first, last, true) != last;
}

}  // namespace

Suspicion::Suspicion(const CaptureSource& source, const CaptureLayout& layout,
                     const DisputedCells& disputed, Workers& workers,
                     const AnalysisProgress& progress)
    : maps(layout.Count()) {
  const std::vector<bool> isDisputed = FindDisputedCaptures(layout, disputed);
  const cv::Size cells = CellsOver(layout.CaptureSize());
  const cv::Size reach = layout.PictureSize() - layout.CaptureSize();
  EvidenceGatherer evidence(source, layout, disputed, workers);
  for (size_t begin = 0; begin < maps.size(); begin += StretchLength) {
    progress.Report(static_cast<double>(begin) / static_cast<double>(maps.size()));
    const size_t end = std::min(begin + StretchLength, maps.size());
    if (!AnyOf(isDisputed, begin, end)) {
      continue;
    }
    const Stretch stretch = {begin - std::min(begin, StretchMargin),
                             std::min(end + StretchMargin, maps.size())};
    const size_t nextEnd = std::min(stretch.end + StretchLength, maps.size());
    const SequenceEvidence& gathered = evidence.Gather(stretch, nextEnd);
    auto found = FindBlame(gathered, cells, workers);
    const cv::Mat panels =
        FindPanels(gathered, *source.Get(stretch.begin), cells, reach.height > 0, reach.width > 0);
    workers.Do(end - begin, [&](size_t i) {
      maps[begin + i] =
          Pack(*source.Get(begin + i), found[begin + i - stretch.begin], panels, layout);
    });
  }
}

cv::Mat Suspicion::Pack(const cv::Mat& pixels, const cv::Mat& suspicion, const cv::Mat& panels,
                        const CaptureLayout& layout) const {
  const cv::Size reach = layout.PictureSize() - layout.CaptureSize();
  const cv::Mat features =
      FindFixedFeatures(pixels, (suspicion >= Covered) | panels, reach.height > 0, reach.width > 0);
  cv::Mat shadowed = suspicion.clone();
  SuspectShadows(shadowed);
  cv::Mat packed;
  shadowed.convertTo(packed, CV_8U, MostSuspect);
  cv::min(packed, MostSuspect - 1, packed);
  packed.setTo(MostSuspect - 1, panels);
  packed.setTo(MostSuspect, panels & ((features & OnBackground) != 0));
  packed *= 1 << FeatureBitCount;
  packed += features & FeatureMask;
  return packed;
}

}  // namespace ScrollingCapture
