#pragma once

#include <cstddef>
#include <vector>

#include <opencv2/core.hpp>

#include <VelScrollingCapture/mosaic/internal/Agreement.h>
#include <VelScrollingCapture/mosaic/internal/Blame.h>
#include <VelScrollingCapture/mosaic/internal/CaptureLayout.h>
#include <VelScrollingCapture/mosaic/internal/CaptureSource.h>
#include <VelScrollingCapture/mosaic/internal/PairEvidence.h>
#include <VelScrollingCapture/mosaic/internal/Workers.h>

namespace ScrollingCapture {

/// Captures that are judged together, in time order.
struct Stretch {
  size_t begin;
  size_t end;

  size_t Count() const { return end - begin; }
};

/// Gathers what one stretch of captures after the other has to say. What two stretches have in
/// common is looked at once.
class EvidenceGatherer {
 public:
  EvidenceGatherer(const CaptureSource& source, const CaptureLayout& layout,
                   const DisputedCells& disputed, Workers& workers)
      : source(source), layout(layout), disputed(disputed), workers(workers) {}

  /// @param next    begins and ends behind the stretches before it
  /// @param nextEnd where the one after it ends
  const SequenceEvidence& Gather(const Stretch& next, size_t nextEnd);

 private:
  void MoveTo(const Stretch& next);
  void FindWantedRows(size_t nextEnd);
  void FindStanding(size_t i);
  void CompareGroup(size_t begin, size_t end);
  std::vector<size_t> UnknownPairs(size_t begin, size_t end) const;
  void LookAt(size_t i);
  void Compare(size_t i);

  const CaptureSource& source;
  const CaptureLayout& layout;
  const DisputedCells& disputed;
  Workers& workers;
  Stretch stretch = {0, 0};
  SequenceEvidence evidence;
  std::vector<bool> wantedRows;  ///< of cells, of which there is evidence
  std::vector<cv::Mat> kinds;    ///< of the captures at work; empty for others
};

}  // namespace ScrollingCapture
