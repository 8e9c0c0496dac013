#pragma once

#include <memory>

#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/session/internal/RecordedBorders.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

/// Joins captures by phase correlation of neighbours, at the end, and lays them with hard seams.
class PhaseCorrelationEngine : public SessionEngine {
 public:
  explicit PhaseCorrelationEngine(const SessionSettings& settings);

  std::optional<SessionResult> Stitch(const std::shared_ptr<IImageProvider>& captures,
                                      IStitcherListener* listener) override;

 private:
  std::optional<FixedBorders> FoundBorders() const;

  std::shared_ptr<IStitcher> stitcher;
  std::shared_ptr<RecordedBorders> borderDetection;  ///< null when borders are not asked for
};

}  // namespace ScrollingCapture
