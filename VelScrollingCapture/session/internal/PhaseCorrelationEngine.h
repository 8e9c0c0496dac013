#pragma once

#include <memory>

#include <VelScrollingCapture/core/IStitcher.h>
#include <VelScrollingCapture/session/internal/ProvingDetector.h>
#include <VelScrollingCapture/session/internal/RecordedBorders.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

/// Joins captures by phase correlation of neighbours, at the end, and lays them with hard seams.
class PhaseCorrelationEngine : public SessionEngine {
 public:
  PhaseCorrelationEngine(const SessionSettings& settings, std::shared_ptr<IImageProvider> captures);

  bool JoinsAtOnce() const override { return false; }
  std::optional<PlacedCapture> Join(const IncomingCapture& capture) override;
  std::optional<SessionResult> Stitch(IStitcherListener* listener) override;

 private:
  std::vector<CaptureInPicture> CapturesInPicture(std::size_t count) const;

  const std::shared_ptr<IImageProvider> captures;
  std::shared_ptr<ProvingDetector> detector;
  std::shared_ptr<IStitcher> stitcher;
  std::shared_ptr<RecordedBorders> borderDetection;  ///< null when borders are not asked for
};

}  // namespace ScrollingCapture
