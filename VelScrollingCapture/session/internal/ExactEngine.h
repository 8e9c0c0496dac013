#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <vector>

#include <VelScrollingCapture/matching/CapturePlacer.h>
#include <VelScrollingCapture/mosaic/Mosaic.h>
#include <VelScrollingCapture/session/internal/SessionEngine.h>

namespace ScrollingCapture {

/// Places captures as they come by joins that are proven on the pixels, and makes a mosaic of them.
class ExactEngine : public SessionEngine {
 public:
  ExactEngine(const SessionSettings& settings, std::shared_ptr<IImageProvider> captures);

  bool JoinsAtOnce() const override { return true; }
  std::optional<PlacedCapture> Join(const IncomingCapture& capture) override;
  std::optional<SessionResult> Stitch(IStitcherListener* listener) override;

 private:
  PlacedCapture PlaceNext(const IncomingCapture& capture);
  void PlaceLeftOver(std::size_t end);

  const std::shared_ptr<IImageProvider> captures;
  const MosaicSettings mosaicSettings;
  CapturePlacer placer;
  std::map<std::size_t, Translation> prescribed;
  bool allOpaque = true;
};

}  // namespace ScrollingCapture
